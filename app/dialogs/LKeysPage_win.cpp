#include "app/dialogs/LKeysPage_win.h"

#include <commctrl.h>
#include <prsht.h>

#include <algorithm>
#include <iterator>
#include <span>

#include "app/dialogs/HotKeyDialog_win.h"
#include "hardware/CommandTable.h"
#include "hardware/FreeHotKey_win.h"
#include "hardware/HotKeyFault.h"
#include "hardware/KeyText.h"
#include "hardware/PlatformKeyName_win.h"
#include "res/Ids.h"

namespace {

constexpr char kHeading[] = "&Hot keys, which work in every program:";
constexpr char kNotRead[] = "The hot keys cannot be read at the moment. Please try again.";
constexpr char kNotStored[] =
    "The change could not be stored. The disk might be full, or the settings write-protected.";
constexpr char kBusy[] = "Another program is using the hot keys at the moment. Please try again.";
constexpr char kGone[] =
    "This hot key has been changed or deleted in another window. The list now shows the hot keys as they "
    "are.";

void AddColumn(HWND list, int column, const char* heading, int width) {
    LVCOLUMNA description = {};
    description.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_SUBITEM;
    description.pszText = const_cast<char*>(heading);
    description.cx = width;
    description.iSubItem = column;
    SendMessageA(list, LVM_INSERTCOLUMNA, static_cast<WPARAM>(column),
                 reinterpret_cast<LPARAM>(&description));
}

void SetCell(HWND list, int row, int column, const char* text) {
    LVITEMA item = {};
    item.mask = LVIF_TEXT;
    item.iItem = row;
    item.iSubItem = column;
    item.pszText = const_cast<char*>(text);
    if (column == 0)
        SendMessageA(list, LVM_INSERTITEMA, 0, reinterpret_cast<LPARAM>(&item));
    else
        SendMessageA(list, LVM_SETITEMTEXTA, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
}

}  // namespace

LKeysPage::LKeysPage(const LPath& settingsFile)
    : LPropertyPage(IDD_KEYSPAGE, LNoControls()), m_stored(settingsFile) {}

void LKeysPage::InitPage() {
    const HWND list = Item(IDC_KEYS_LIST);
    ListView_SetExtendedListViewStyle(list, LVS_EX_FULLROWSELECT);
    RECT box;
    GetClientRect(list, &box);
    constexpr struct {
        const char* heading;
        int percent;  // of the width
    } kColumns[] = {{"Key", 27}, {"Command", 31}, {"Remark", 42}};
    for (int column = 0; column < static_cast<int>(std::size(kColumns)); ++column)
        AddColumn(list, column, kColumns[column].heading,
                  static_cast<int>(box.right) * kColumns[column].percent / 100);
    ShowList(0, nullptr);
}

void LKeysPage::ShowList(int selected, const HotKey* wanted) {
    const HWND list = Item(IDC_KEYS_LIST);
    const auto stored = m_stored.Read();
    m_list = stored.value_or(std::vector<HotKey>());
    LSetWindowText(Item(IDC_KEYS_HEADING), stored ? kHeading : kNotRead);  // no list is not an empty one
    SendMessageA(list, WM_SETREDRAW, FALSE, 0);
    ListView_DeleteAllItems(list);
    const int count = static_cast<int>(m_list.size());
    for (int row = 0; row < count; ++row) AddRow(row);
    SendMessageA(list, WM_SETREDRAW, TRUE, 0);
    ListView_SetColumnWidth(list, 2, LVSCW_AUTOSIZE_USEHEADER);  // the rest, which a scroll bar narrows
    InvalidateRect(list, nullptr, TRUE);
    const auto found = wanted != nullptr ? HotKeyList::Find(m_list, selected, *wanted) : std::nullopt;
    const int row = found.value_or(std::min(selected, count - 1));
    if (row < 0) return;
    constexpr UINT kChosen = LVIS_SELECTED | LVIS_FOCUSED;
    ListView_SetItemState(list, row, kChosen, kChosen);
    ListView_EnsureVisible(list, row, FALSE);
}

// The hot keys of this program are not registered meanwhile: what is not free belongs to another.
void LKeysPage::AddRow(int row) {
    const HWND list = Item(IDC_KEYS_LIST);
    const HotKey& hotKey = m_list[static_cast<size_t>(row)];
    const char* command = NameOfCommand(hotKey.command);
    const auto fault = FaultOf(hotKey, std::span(m_list).first(static_cast<size_t>(row)),
                               [this](const HotKey& key) { return IsHotKeyFree(Window(), key); });
    SetCell(list, row, 0, KeyText(hotKey, PlatformKeyName).c_str());
    SetCell(list, row, 1, command != nullptr ? command : "Unknown command");
    SetCell(list, row, 2, RemarkOn(fault));
}

int LKeysPage::Selected() const {
    return ListView_GetNextItem(Item(IDC_KEYS_LIST), -1, LVNI_SELECTED);
}

void LKeysPage::UpdateControls() {
    const bool isSelected = Selected() >= 0;
    Enable(IDC_KEYS_EDIT, isSelected);
    Enable(IDC_KEYS_DELETE, isSelected);
}

bool LKeysPage::HandleMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) {
    const auto* header = message == WM_NOTIFY ? reinterpret_cast<const NMHDR*>(lParam) : nullptr;
    const bool isOurs =
        (message == WM_COMMAND && HIWORD(wParam) == BN_CLICKED && EvCommand(LOWORD(wParam))) ||
        (header != nullptr && header->idFrom == IDC_KEYS_LIST && EvNotify(*header));
    return isOurs || LPropertyPage::HandleMessage(message, wParam, lParam, result);
}

bool LKeysPage::EvCommand(int control) {
    switch (control) {
        case IDC_KEYS_ADD:
            return Add(), true;
        case IDC_KEYS_EDIT:
            return Edit(), true;
        case IDC_KEYS_DELETE:
            return Delete(), true;
        default:
            return false;
    }
}

bool LKeysPage::EvNotify(const NMHDR& header) {
    switch (header.code) {
        case LVN_ITEMCHANGED:
            return UpdateControls(), true;
        case NM_DBLCLK:
            return Edit(), true;
        case LVN_KEYDOWN:
            if (reinterpret_cast<const NMLVKEYDOWN&>(header).wVKey != VK_DELETE) return false;
            return Delete(), true;
        default:
            return false;
    }
}

void LKeysPage::Add() {
    if (!m_stored.Read()) {
        Refuse(IDC_KEYS_LIST, kNotRead);
        return;
    }
    if (const auto hotKey = Ask(HotKey{}, std::nullopt))
        Stored(m_stored.Add(*hotKey), static_cast<int>(m_list.size()), &*hotKey);
}

void LKeysPage::Edit() {
    const int row = Selected();
    if (row < 0) return;
    const HotKey shown = m_list[static_cast<size_t>(row)];
    if (const auto hotKey = Ask(shown, row)) Stored(m_stored.Set(row, shown, *hotKey), row, &*hotKey);
}

std::optional<HotKey> LKeysPage::Ask(const HotKey& before, std::optional<int> row) {
    std::vector<HotKey> others = m_list;
    if (row) others.erase(others.begin() + *row);
    const auto hotKey = AskForHotKey(GetParent(Window()), before, others);
    if (hotKey) m_lastKey = hotKey->key.value_or(0);
    return hotKey;
}

// Del, or Alt with D, chosen as a hot key and still held, repeats into this window.
void LKeysPage::Delete() {
    const int row = Selected();
    if (row < 0 || (m_lastKey != 0 && GetAsyncKeyState(m_lastKey) < 0)) return;
    m_lastKey = 0;
    Stored(m_stored.Delete(row, m_list[static_cast<size_t>(row)]), row, nullptr);
}

void LKeysPage::Stored(HotKeyList::Change change, int selected, const HotKey* hotKey) {
    if (!IsOpen()) return;
    ShowList(selected, hotKey);
    UpdateControls();
    switch (change) {
        case HotKeyList::Change::Gone:
            Refuse(IDC_KEYS_LIST, kGone);
            return;
        case HotKeyList::Change::Busy:
            Refuse(IDC_KEYS_LIST, kBusy);
            return;
        case HotKeyList::Change::NotStored:
            Refuse(IDC_KEYS_LIST, kNotStored);
            break;
        case HotKeyList::Change::Done:
            SendMessageA(Window(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(Item(IDC_KEYS_LIST)), TRUE);
            break;
    }
    if (IsOpen()) PropSheet_CancelToClose(GetParent(Window()));
}
