#include "app/window/DictationList_win.h"

#include <algorithm>
#include <array>

#include "app/window/DateText_win.h"
#include "base/LText.h"
#include "base/LTrace.h"
#include "res/Ids.h"
#include "store/DictationRecord.h"
#include "store/DictationStore.h"

namespace {

constexpr int kFontHeight = 16;  // pixels

struct Column {
    const char* heading;
    int width;  // pixels
};
constexpr Column kColumns[] = {
    {"Dictation", 120}, {"Date", 70}, {"Time", 70}, {"Dur", 60}, {"Priority", 70}, {"Notes", 200},
};

// Holds a counter up while it lives.
class Quiet {
public:
    explicit Quiet(int& count) : m_count(count) { ++m_count; }
    ~Quiet() { --m_count; }
    Quiet(const Quiet&) = delete;
    Quiet& operator=(const Quiet&) = delete;

private:
    int& m_count;
};

}  // namespace

void DictationList::Attach(HWND list, Owner& owner) {
    m_list = list;
    m_owner = &owner;
    ListView_SetExtendedListViewStyle(m_list, LVS_EX_FULLROWSELECT);
    int index = 0;
    for (const Column& column : kColumns) {
        LVCOLUMNA item = {};
        item.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_SUBITEM;
        item.pszText = const_cast<char*>(column.heading);
        item.cx = column.width;
        item.iSubItem = index;
        SendMessageA(m_list, LVM_INSERTCOLUMNA, static_cast<WPARAM>(index++),
                     reinterpret_cast<LPARAM>(&item));
    }
    LOGFONTA font = {};
    GetObjectA(reinterpret_cast<HFONT>(SendMessageA(m_list, WM_GETFONT, 0, 0)), sizeof font, &font);
    font.lfHeight = kFontHeight;
    font.lfWidth = 0;
    font.lfWeight = FW_NORMAL;
    m_font.Reset(CreateFontIndirectA(&font));
    SendMessageA(m_list, WM_SETFONT, reinterpret_cast<WPARAM>(m_font.Get()), FALSE);
}

void DictationList::SetupFilesList(const LPath& folder) {
    {
        const Quiet quiet(m_quiet);
        SendMessageA(m_list, WM_SETREDRAW, FALSE, 0);
        ListView_DeleteAllItems(m_list);
        m_entries.clear();
        for (const LPath& record : ListRecords(folder)) AddFile(record);
        SendMessageA(m_list, WM_SETREDRAW, TRUE, 0);
        InvalidateRect(m_list, nullptr, TRUE);
        SelectOnly(Count() - 1);
    }
    m_owner->FileChanged();
}

int DictationList::AddFile(const LPath& record) {
    if (record.Empty()) return -1;
    const DictationRow row = LoadDictationRow(record);
    if (const int index = IndexOfNumber(row.number); index >= 0) return index;
    return Append(row);
}

int DictationList::Append(const DictationRow& row) {
    const Quiet quiet(m_quiet);
    LVITEMA item = {};
    item.mask = LVIF_TEXT | LVIF_PARAM;
    item.iItem = Count();
    item.pszText = const_cast<char*>(row.name.c_str());
    item.lParam = row.number;
    const int index =
        static_cast<int>(SendMessageA(m_list, LVM_INSERTITEMA, 0, reinterpret_cast<LPARAM>(&item)));
    if (index < 0) {
        LTrace("DictationList::Append InsertItem FAILED");
        return index;
    }
    m_entries.push_back({row.number, row.files});

    const std::array texts = {FormatDate(row.date), FormatTimeOfDay(row.date), row.duration, row.priority,
                              row.notes};
    for (size_t i = 0; i < texts.size(); ++i) {
        LVITEMA sub = {};
        sub.iSubItem = static_cast<int>(i) + 1;
        sub.pszText = const_cast<char*>(texts[i].c_str());
        SendMessageA(m_list, LVM_SETITEMTEXTA, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&sub));
    }
    return index;
}

void DictationList::UpdateFile(const LPath& record) {
    const Entry* entry = EntryOf(record);
    if (entry == nullptr) {
        AddFile(record);
        return;
    }
    const Quiet quiet(m_quiet);
    const int32_t number = entry->number;
    const int old = IndexOfNumber(number);
    const UINT state = ListView_GetItemState(m_list, old, LVIS_SELECTED | LVIS_FOCUSED);
    SendMessageA(m_list, WM_SETREDRAW, FALSE, 0);
    ListView_DeleteItem(m_list, old);
    std::erase_if(m_entries, [&](const Entry& e) { return e.number == number; });
    const int index = AddFile(record);
    ListView_SetItemState(m_list, index, state, LVIS_SELECTED | LVIS_FOCUSED);
    SendMessageA(m_list, WM_SETREDRAW, TRUE, 0);
    InvalidateRect(m_list, nullptr, TRUE);
    if ((state & LVIS_SELECTED) != 0) ListView_EnsureVisible(m_list, index, FALSE);
}

void DictationList::UpdateNumber(int32_t number) {
    for (const Entry& entry : m_entries) {
        if (entry.number != number) continue;
        UpdateFile(LPath(entry.files.record));
        return;
    }
}

void DictationList::RemoveFile(const LPath& record) {
    const Entry* entry = EntryOf(record);
    if (entry == nullptr) return;
    {
        const Quiet quiet(m_quiet);
        const int32_t number = entry->number;
        const int index = IndexOfNumber(number);
        ListView_DeleteItem(m_list, index);
        std::erase_if(m_entries, [&](const Entry& e) { return e.number == number; });
        if (SelectedCount() == 0) SelectOnly(std::min(index, Count() - 1));
    }
    m_owner->FileChanged();
}

void DictationList::SelectFile(const LPath& record) {
    const Entry* entry = EntryOf(record);
    if (entry == nullptr) return;
    {
        const Quiet quiet(m_quiet);
        SelectOnly(IndexOfNumber(entry->number));
    }
    m_owner->FileChanged();
}

void DictationList::SelectOnly(int index) {
    ListView_SetItemState(m_list, -1, 0, LVIS_SELECTED | LVIS_FOCUSED);
    if (index < 0) return;
    ListView_SetItemState(m_list, index, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
    ListView_EnsureVisible(m_list, index, FALSE);
}

void DictationList::ShowCurrent() {
    if (const int index = CurrentIndex(); index >= 0) ListView_EnsureVisible(m_list, index, FALSE);
}

void DictationList::BeginRename() {
    const int index = CurrentIndex();
    if (index < 0) return;
    SetFocus(m_list);
    ListView_EditLabel(m_list, index);
}

bool DictationList::Rename(const DictationFiles& files, std::string_view name) {
    const bool isStored = StoreName(files.record, name);
    UpdateFile(files.record);
    return isStored;
}

int DictationList::CurrentIndex() const {
    const int focused = ListView_GetNextItem(m_list, -1, LVNI_FOCUSED | LVNI_SELECTED);
    return focused >= 0 ? focused : ListView_GetNextItem(m_list, -1, LVNI_SELECTED);
}

std::optional<DictationFiles> DictationList::FilesAt(int index) const {
    const Entry* entry = EntryAt(index);
    if (entry == nullptr) return std::nullopt;
    return entry->files;
}

std::optional<DictationFiles> DictationList::Focused() const {
    return FilesAt(ListView_GetNextItem(m_list, -1, LVNI_FOCUSED | LVNI_SELECTED));
}

std::optional<DictationFiles> DictationList::First() const {
    return FilesAt(ListView_GetNextItem(m_list, -1, LVNI_SELECTED));
}

bool DictationList::IsSelected(const DictationFiles& files) const {
    const Entry* entry = EntryOf(files.record);
    return entry != nullptr &&
           ListView_GetItemState(m_list, IndexOfNumber(entry->number), LVIS_SELECTED) != 0;
}

std::optional<int32_t> DictationList::NumberOf(const LPath& record) const {
    const Entry* entry = EntryOf(record);
    if (entry == nullptr) return std::nullopt;
    return entry->number;
}

std::string DictationList::NameOf(const LPath& record) const {
    char text[kPathSize] = {};
    if (const Entry* entry = EntryOf(record))
        ListView_GetItemText(m_list, IndexOfNumber(entry->number), 0, text, sizeof text);
    return text;
}

std::vector<DictationFiles> DictationList::Selected() const {
    std::vector<DictationFiles> selected;
    for (int i = -1; (i = ListView_GetNextItem(m_list, i, LVNI_SELECTED)) >= 0;)
        if (const Entry* entry = EntryAt(i)) selected.push_back(entry->files);
    return selected;
}

int DictationList::IndexOfNumber(int32_t number) const {
    const bool known = std::any_of(m_entries.begin(), m_entries.end(),
                                   [&](const Entry& entry) { return entry.number == number; });
    if (!known) return -1;
    LVFINDINFOA find = {};
    find.flags = LVFI_PARAM;
    find.lParam = number;
    return static_cast<int>(
        SendMessageA(m_list, LVM_FINDITEMA, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(&find)));
}

const DictationList::Entry* DictationList::EntryAt(int index) const {
    if (index < 0) return nullptr;
    LVITEMA item = {};
    item.mask = LVIF_PARAM;
    item.iItem = index;
    if (SendMessageA(m_list, LVM_GETITEMA, 0, reinterpret_cast<LPARAM>(&item)) == FALSE) return nullptr;
    for (const Entry& entry : m_entries)
        if (entry.number == item.lParam) return &entry;
    return nullptr;
}

const DictationList::Entry* DictationList::EntryOf(const LPath& record) const {
    for (const Entry& entry : m_entries)
        if (LEqualNoCase(entry.files.record.View(), record.View())) return &entry;
    return nullptr;
}

bool DictationList::HandleNotify(const NMHDR& header, LRESULT& result) {
    result = 0;
    switch (header.code) {
        case LVN_ITEMCHANGED:
            EvItemChanged(reinterpret_cast<const NMLISTVIEW&>(header));
            return true;
        case LVN_BEGINLABELEDITA:
            EvBeginLabelEdit(reinterpret_cast<const NMLVDISPINFOA&>(header));
            return true;
        case LVN_ENDLABELEDITA:
            result = EvEndLabelEdit(reinterpret_cast<const NMLVDISPINFOA&>(header));
            return true;
        case NM_DBLCLK:
            if (reinterpret_cast<const NMLISTVIEW&>(header).iItem >= 0) m_owner->PlayFromStart();
            return true;
        default:
            return false;
    }
}

void DictationList::EvItemChanged(const NMLISTVIEW& change) {
    const bool moved = ((change.uNewState ^ change.uOldState) & (LVIS_SELECTED | LVIS_FOCUSED)) != 0;
    if (m_quiet == 0 && (change.uChanged & LVIF_STATE) != 0 && moved) m_owner->SelectionMoved();
}

void DictationList::EvBeginLabelEdit(const NMLVDISPINFOA& edit) {
    const Entry* entry = EntryAt(edit.item.iItem);
    m_renamedNumber = entry != nullptr ? entry->number : 0;
    m_owner->BeforeRename();
}

LRESULT DictationList::EvEndLabelEdit(const NMLVDISPINFOA& edit) {
    const int32_t number = m_renamedNumber;
    LRESULT isTaken = FALSE;
    for (const Entry& entry : m_entries) {
        if (entry.number != number || edit.item.pszText == nullptr || *edit.item.pszText == 0) continue;
        isTaken = StoreName(entry.files.record, edit.item.pszText);
    }
    m_owner->AfterRename(number);
    return isTaken;
}
