#include "ui/LControlTable.h"

#include <commctrl.h>

#include <algorithm>
#include <charconv>

#include "base/LText.h"

// A page is a table of rows in place of code for each control. A value counts as changed when the control
// shows another one than just after loading; comparing with the stored value would not do, since a control
// cannot show every stored value (a number that is in no list, a text longer than its limit), and such a
// value must stay until the user replaces it.

namespace {

using Kind = LControlRow::Kind;

// The length of "-2147483648".
constexpr WPARAM kMostNumberCharacters = 11;

// Parses a text that holds one whole number and nothing else but blanks around it.
std::optional<LControlValue> ParseNumber(std::string_view text) {
    while (!text.empty() && LIsBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && LIsBlank(text.back())) text.remove_suffix(1);
    int32_t number = 0;
    const auto end = std::from_chars(text.data(), text.data() + text.size(), number);
    if (text.empty() || end.ec != std::errc() || end.ptr != text.data() + text.size()) return std::nullopt;
    return LControlValue{number, {}};
}

class NoControls final : public LControlBinding {
    size_t Count() const override { return 0; }
    const LControlRow& Row(size_t) const override {
        static constexpr LControlRow kNone = LControlRow::Check(0);
        return kNone;
    }
    LControlValue Read(size_t) const override { return {}; }
    void Write(size_t, const LControlValue&) override {}
};

}  // namespace

LControlBinding& LNoControls() {
    static NoControls none;
    return none;
}

void LAddListItem(HWND list, const char* text, int32_t value) {
    const LRESULT item = SendMessageA(list, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text));
    if (item >= 0) SendMessageA(list, CB_SETITEMDATA, static_cast<WPARAM>(item), value);
}

bool LSelectListItem(HWND list, int32_t value) {
    const auto count = static_cast<WPARAM>(SendMessageA(list, CB_GETCOUNT, 0, 0));
    WPARAM item = 0;
    while (item < count && SendMessageA(list, CB_GETITEMDATA, item, 0) != value) ++item;
    SendMessageA(list, CB_SETCURSEL, item < count ? item : static_cast<WPARAM>(-1), 0);
    return item < count;
}

std::optional<int32_t> LSelectedListItem(HWND list) {
    const LRESULT item = SendMessageA(list, CB_GETCURSEL, 0, 0);
    if (item < 0) return std::nullopt;
    return static_cast<int32_t>(SendMessageA(list, CB_GETITEMDATA, static_cast<WPARAM>(item), 0));
}

void LAddNumberedItems(HWND list, const std::vector<std::string>& names, int32_t stored, const char* absent) {
    int32_t value = 0;
    for (const std::string& name : names) LAddListItem(list, name.c_str(), value++);
    if (stored >= value) LAddListItem(list, LFormat(absent, static_cast<int>(stored) + 1).c_str(), stored);
}

void LControlTable::Load(HWND dialog) {
    m_dialog = dialog;
    m_levels = std::make_unique<LDBEdit[]>(m_binding.Count());
    m_loaded.clear();
    for (size_t row = 0; row < m_binding.Count(); ++row) {
        Show(row, m_binding.Read(row));
        m_loaded.push_back(Shown(row));
    }
}

void LControlTable::Show(size_t row, const LControlValue& value) {
    const LControlRow& r = m_binding.Row(row);
    switch (r.kind) {
        case Kind::Text:
            SendMessageA(Item(r.control), EM_SETLIMITTEXT, static_cast<WPARAM>(r.most), 0);
            LSetWindowText(Item(r.control), value.text);
            break;
        case Kind::Check:
            CheckDlgButton(m_dialog, r.control, value.number != 0 ? BST_CHECKED : BST_UNCHECKED);
            break;
        case Kind::Radio:
            for (const LRadioButton& button : r.buttons)
                CheckDlgButton(m_dialog, button.control,
                               button.value == value.number ? BST_CHECKED : BST_UNCHECKED);
            break;
        case Kind::Level:
            m_levels[row].Attach(Item(r.control), static_cast<int8_t>(value.number));
            break;
        case Kind::Slider:
            SendMessageA(Item(r.control), TBM_SETRANGEMIN, FALSE, r.least);
            SendMessageA(Item(r.control), TBM_SETRANGEMAX, TRUE, r.most);
            SendMessageA(Item(r.control), TBM_SETPOS, TRUE, r.least);  // or a position of 0 is drawn there
            SendMessageA(Item(r.control), TBM_SETPOS, TRUE, value.number);
            break;
        case Kind::Number:
            SendMessageA(Item(r.control), EM_SETLIMITTEXT, kMostNumberCharacters, 0);
            LSetWindowText(Item(r.control), LFormat("%d", static_cast<int>(value.number)));
            break;
        case Kind::List:
            LSelectListItem(Item(r.control), value.number);
            break;
    }
}

std::optional<LControlValue> LControlTable::Shown(size_t row) const {
    const LControlRow& r = m_binding.Row(row);
    switch (r.kind) {
        case Kind::Text:
            return LControlValue{0, LWindowText(Item(r.control))};
        case Kind::Check:
            return LControlValue{IsDlgButtonChecked(m_dialog, r.control) == BST_CHECKED, {}};
        case Kind::Radio:
            for (const LRadioButton& button : r.buttons)
                if (IsDlgButtonChecked(m_dialog, button.control) == BST_CHECKED)
                    return LControlValue{button.value, {}};
            return std::nullopt;
        case Kind::Level:
            return LControlValue{m_levels[row].Level(), {}};
        case Kind::Slider:
            return LControlValue{SendMessageA(Item(r.control), TBM_GETPOS, 0, 0), {}};
        case Kind::Number:
            return ParseNumber(LWindowText(Item(r.control)));
        case Kind::List:
            if (const auto value = LSelectedListItem(Item(r.control))) return LControlValue{*value, {}};
            return std::nullopt;
    }
    return std::nullopt;
}

bool LControlTable::IsInRange(size_t row, const LControlValue& value) const {
    const LControlRow& r = m_binding.Row(row);
    return r.kind != Kind::Number || (value.number >= r.least && value.number <= r.most);
}

// The value of a row when the user changed it and it can be accepted.
std::optional<LControlValue> LControlTable::Changed(size_t row) const {
    std::optional<LControlValue> shown = Shown(row);
    return shown != m_loaded[row] && shown && IsInRange(row, *shown) ? shown : std::nullopt;
}

bool LControlTable::IsChange(int control, int notification) const {
    for (size_t row = 0; row < m_binding.Count(); ++row) {
        const LControlRow& r = m_binding.Row(row);
        const bool isButton = r.kind == Kind::Check || r.kind == Kind::Radio;
        if (notification != (isButton ? BN_CLICKED : r.kind == Kind::List ? CBN_SELCHANGE : EN_CHANGE))
            continue;
        if (control == r.control ||
            std::ranges::find(r.buttons, control, &LRadioButton::control) != r.buttons.end())
            return true;
    }
    return false;
}

std::optional<LControlTable::Problem> LControlTable::FindProblem() const {
    for (size_t row = 0; row < m_binding.Count(); ++row) {
        const LControlRow& r = m_binding.Row(row);
        if (r.kind != Kind::Number || !IsWindowEnabled(Item(r.control))) continue;
        const std::optional<LControlValue> shown = Shown(row);
        if (shown && (shown == m_loaded[row] || IsInRange(row, *shown))) continue;
        return Problem{r.control, LFormat("Please enter a whole number from %d to %d.",
                                          static_cast<int>(r.least), static_cast<int>(r.most))};
    }
    return std::nullopt;
}

void LControlTable::Store(Which which) {
    for (size_t row = 0; row < m_binding.Count(); ++row) {
        std::optional<LControlValue> value = which == Which::All ? Shown(row) : Changed(row);
        if (!value || !IsInRange(row, *value)) continue;
        m_binding.Write(row, *value);
        m_loaded[row] = value;
    }
}

std::optional<int32_t> LControlTable::NumberOf(int control) const {
    for (size_t row = 0; row < m_binding.Count(); ++row) {
        if (m_binding.Row(row).control != control) continue;
        const std::optional<LControlValue> shown = Shown(row);
        if (shown && IsInRange(row, *shown)) return shown->number;
    }
    return std::nullopt;
}
