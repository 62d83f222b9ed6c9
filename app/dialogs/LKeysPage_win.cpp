#include "app/dialogs/LKeysPage_win.h"

#include <commctrl.h>
#include <prsht.h>

#include <algorithm>

#include "app/dialogs/HotKeyDialog_win.h"
#include "hardware/CommandTable.h"
#include "hardware/KeyText.h"
#include "hardware/PlatformKeyName_win.h"
#include "res/Ids.h"

namespace {

constexpr char kHeading[] = "&Hot keys, which work in every program:";
constexpr char kNotRead[] = "The hot keys cannot be read at the moment. Please try again.";
constexpr char kNotStored[] =
    "The change could not be stored. The disk might be full, or the settings write-protected.";

void AddColumn(HWND list, int column, const char* heading, int width) {
    LVCOLUMNA description = {};
    description.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_SUBITEM;
    description.pszText = const_cast<char*>(heading);
    description.cx = width;
    description.iSubItem = column;
    SendMessageA(list, LVM_INSERTCOLUMNA, static_cast<WPARAM>(column),
                 reinterpret_cast<LPARAM>(&description));
}

void AddRow(HWND list, int row, const HotKey& hotKey) {
    std::string key = KeyText(hotKey, PlatformKeyName);
    const char* command = NameOfCommand(hotKey.command);
    LVITEMA item = {};
    item.mask = LVIF_TEXT;
    item.iItem = row;
    item.pszText = key.data();
    SendMessageA(list, LVM_INSERTITEMA, 0, reinterpret_cast<LPARAM>(&item));
    item.iSubItem = 1;
    item.pszText = const_cast<char*>(command != nullptr ? command : "Unknown command");
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
    AddColumn(list, 0, "Key", static_cast<int>(box.right) / 2);
    AddColumn(list, 1, "Command", static_cast<int>(box.right) / 2);
    ShowList(0);
}

void LKeysPage::ShowList(int selected) {
    const HWND list = Item(IDC_KEYS_LIST);
    const auto stored = m_stored.Read();
    m_list = stored.value_or(std::vector<HotKey>());
    LSetWindowText(Item(IDC_KEYS_HEADING), stored ? kHeading : kNotRead);  // no list is not an empty one
    SendMessageA(list, WM_SETREDRAW, FALSE, 0);
    ListView_DeleteAllItems(list);
    const int count = static_cast<int>(m_list.size());
    for (int row = 0; row < count; ++row) AddRow(list, row, m_list[static_cast<size_t>(row)]);
    SendMessageA(list, WM_SETREDRAW, TRUE, 0);
    ListView_SetColumnWidth(list, 1, LVSCW_AUTOSIZE_USEHEADER);  // the rest, which a scroll bar narrows
    InvalidateRect(list, nullptr, TRUE);
    const int row = std::min(selected, count - 1);
    if (row < 0) return;
    constexpr UINT kChosen = LVIS_SELECTED | LVIS_FOCUSED;
    ListView_SetItemState(list, row, kChosen, kChosen);
    ListView_EnsureVisible(list, row, FALSE);
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
    if (const auto hotKey = AskForHotKey(GetParent(Window()), HotKey{})) {
        m_lastKey = hotKey->key.value_or(0);
        Stored(m_stored.Add(*hotKey), static_cast<int>(m_list.size()));
    }
}

void LKeysPage::Edit() {
    const int row = Selected();
    if (row < 0) return;
    if (const auto hotKey = AskForHotKey(GetParent(Window()), m_list[static_cast<size_t>(row)])) {
        m_lastKey = hotKey->key.value_or(0);
        Stored(m_stored.Set(row, *hotKey), row);
    }
}

// Del, or Alt with D, chosen as a hot key and still held, repeats into this window.
void LKeysPage::Delete() {
    const int row = Selected();
    if (row < 0 || (m_lastKey != 0 && GetAsyncKeyState(m_lastKey) < 0)) return;
    m_lastKey = 0;
    Stored(m_stored.Delete(row), row);
}

void LKeysPage::Stored(bool isStored, int selected) {
    if (!IsOpen()) return;
    ShowList(selected);
    UpdateControls();
    PropSheet_CancelToClose(GetParent(Window()));
    if (!isStored)
        Refuse(IDC_KEYS_LIST, kNotStored);
    else
        SendMessageA(Window(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(Item(IDC_KEYS_LIST)), TRUE);
}
