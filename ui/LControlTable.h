#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "base/LProfile.h"
#include "ui/LDBEdit.h"

constexpr int32_t kMostSettingBytes = LProfile::kMaxText;  // length of a text in a settings file

// The value of a control: a text, or a number (of a check box 0 or 1, of radio buttons or a list the value of
// the choice, a level in dB, or the number in an edit field).
struct LControlValue {
    int32_t number = 0;
    std::string text;

    bool operator==(const LControlValue&) const = default;
};

// A radio button and the value it stands for.
struct LRadioButton {
    int control;
    int32_t value;
};

// One row of a page: a control, or a group of radio buttons, and its kind of value.
struct LControlRow {
    enum class Kind { Text, Check, Radio, Level, Slider, Number, List };

    Kind kind;
    int control;
    int32_t least = 0;  // Number, Slider: the smallest allowed value
    int32_t most = 0;   // Number, Slider: the largest allowed value; Text: the length in bytes
    std::span<const LRadioButton> buttons;

    static constexpr LControlRow Text(int control, int32_t mostBytes = kMostSettingBytes) {
        return {Kind::Text, control, 0, mostBytes, {}};
    }
    static constexpr LControlRow Check(int control) { return {Kind::Check, control, 0, 0, {}}; }
    static constexpr LControlRow Radio(std::span<const LRadioButton> buttons) {
        return {Kind::Radio, buttons.front().control, 0, 0, buttons};
    }
    static constexpr LControlRow Level(int control) { return {Kind::Level, control, 0, 0, {}}; }
    // Shows a value beyond its ends at the nearer one.
    static constexpr LControlRow Slider(int control, int32_t least, int32_t most) {
        return {Kind::Slider, control, least, most, {}};
    }
    static constexpr LControlRow Number(int control, int32_t least, int32_t most) {
        return {Kind::Number, control, least, most, {}};
    }
    // A drop-down list whose items carry their values; fill it with LAddListItem.
    static constexpr LControlRow List(int control) { return {Kind::List, control, 0, 0, {}}; }
};

// The rows of a page and the storage of their values: the table reads and writes through this interface, so
// that the ui knows nothing of settings files.
class LControlBinding {
public:
    virtual size_t Count() const = 0;
    virtual const LControlRow& Row(size_t row) const = 0;
    virtual LControlValue Read(size_t row) const = 0;
    virtual void Write(size_t row, const LControlValue& value) = 0;

protected:
    ~LControlBinding() = default;
};

// For a page that keeps its values itself.
LControlBinding& LNoControls();

// The items of a drop-down list: a text each, and the value it stands for.
void LAddListItem(HWND list, const char* text, int32_t value);
// Selects the item of a value. False: there is none, and no item is selected.
bool LSelectListItem(HWND list, int32_t value);
// The value of the selected item.
std::optional<int32_t> LSelectedListItem(HWND list);
// Adds items for the values 0, 1, ...; and one more for a stored value that none of them stands for, so that
// it is shown. absent: the text of that one, with %d for the number counted from 1.
void LAddNumberedItems(HWND list, const std::vector<std::string>& names, int32_t stored, const char* absent);

// The controls of a dialog that edit the values of a binding. Only values that the user changed are checked
// and written; a stored value that no list item or radio button stands for shows no choice, and stays until
// the user makes one.
// Thread: the window thread.
class LControlTable {
public:
    // A value that cannot be accepted: its control, and a sentence for the user.
    struct Problem {
        int control;
        std::string text;
    };

    explicit LControlTable(LControlBinding& binding) : m_binding(binding) {}

    // Shows the values. Precondition: the controls exist and their lists are filled.
    void Load(HWND dialog);
    // Whether a notification code of a control means that the user changed a value.
    bool IsChange(int control, int notification) const;
    // The first changed value that cannot be accepted. Disabled controls are not checked; an invalid value in
    // one of them is not written.
    std::optional<Problem> FindProblem() const;
    // Writes the changed values; All: also those that were not changed, as far as they can be accepted.
    enum class Which { Changed, All };
    void Store(Which which = Which::Changed);
    // The value that the row of a control shows now; nothing when it cannot be accepted.
    std::optional<int32_t> NumberOf(int control) const;

private:
    bool IsInRange(size_t row, const LControlValue& value) const;
    // The value that the control shows; nothing when no button or item is chosen, or the text is no number.
    std::optional<LControlValue> Shown(size_t row) const;
    void Show(size_t row, const LControlValue& value);
    std::optional<LControlValue> Changed(size_t row) const;
    HWND Item(int control) const { return GetDlgItem(m_dialog, control); }

    LControlBinding& m_binding;
    HWND m_dialog = nullptr;
    std::vector<std::optional<LControlValue>> m_loaded;  // the values as shown after loading or storing
    std::unique_ptr<LDBEdit[]> m_levels;  // one for each row; attached where the row is a level
};
