#include "app/dialogs/SentWorkDialog_win.h"

#include <commctrl.h>

#include <algorithm>

#include "res/Ids.h"
#include "ui/LListViewChange.h"

namespace {

constexpr LAnchor kAnchors[] = {
    {.control = IDC_SENTWORK_LIST, .growsX = true, .growsY = true},
    {.control = IDC_SENTWORK_SUMMARY, .movesY = true, .growsX = true},
    {.control = IDCANCEL, .movesX = true, .movesY = true},
};

struct Column {
    const char* heading;
    int share;  // of the width, in percent; the last one gets what is left
};
constexpr Column kColumns[] = {{"Dictation", 29}, {"Sent", 19}, {"Recipient", 28}, {"Status", 24}};
constexpr int kLastColumn = static_cast<int>(std::size(kColumns)) - 1;

int ClientWidth(HWND window) {
    RECT client = {};
    GetClientRect(window, &client);
    return client.right;
}

}  // namespace

bool SentWorkDialog::InitDialog() {
    m_anchors.Attach(Window(), kAnchors);
    const HWND list = Item(IDC_SENTWORK_LIST);
    ListView_SetExtendedListViewStyle(list, LVS_EX_FULLROWSELECT);
    const int width = ClientWidth(list) - GetSystemMetrics(SM_CXVSCROLL);
    int index = 0;
    for (const Column& column : kColumns) {
        LVCOLUMNA item = {};
        item.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_SUBITEM;
        item.pszText = const_cast<char*>(column.heading);
        item.cx = width * column.share / 100;
        item.iSubItem = index;
        SendMessageA(list, LVM_INSERTCOLUMNA, static_cast<WPARAM>(index++), reinterpret_cast<LPARAM>(&item));
    }
    Refresh(true);
    ListView_SetItemState(list, 0, LVIS_FOCUSED | LVIS_SELECTED, LVIS_FOCUSED | LVIS_SELECTED);
    SetFocus(list);
    SetTimer(Window(), TIMER_REFRESH, SentHistory::kLookMs, nullptr);
    Collect();
    return false;
}

// A round of the user who was logged on before may still run; then the timer tries again.
void SentWorkDialog::Collect() {
    if (m_hasCollected) return;
    m_hasCollected = m_collect.Begin(
        m_state.data, m_state.user, [&queue = m_queue](const LPath& audio) { return queue.IsQueued(audio); },
        [window = Window()] { PostMessageA(window, WM_STATUSCOLLECTED, 0, 0); });
}

bool SentWorkDialog::HandleMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) {
    switch (message) {
        case WM_TIMER:
            Collect();
            [[fallthrough]];
        case WM_STATUSCOLLECTED:
            Refresh(m_history.Refresh(SentHistory::kReadBudgetMs));
            return true;
        default:
            if (!m_anchors.HandleMessage(message, wParam, lParam))
                return LDialog::HandleMessage(message, wParam, lParam, result);
            if (message == WM_SIZE) FillWidth();
            return true;
    }
}

void SentWorkDialog::Refresh(bool isHistoryNew) {
    const SendQueueView before = m_view;
    const bool isRead = m_queue.Look(m_view);
    if (isHistoryNew || m_view != before)
        Show(SentWorkRows(m_history.Dictations(), m_view, m_state.user.number));
    FillWidth();  // the scroll bar may have come or gone
    LSetWindowText(Item(IDC_SENTWORK_SUMMARY), SentWorkSummary(m_view.entries.size(), isRead));
}

void SentWorkDialog::Show(std::vector<SentWorkRow> rows) {
    const RowChange change = FindRowChange(m_shown, rows);
    if (change.removed > 0 || change.inserted > 0) ChangeRows(change, rows);
    const HWND list = Item(IDC_SENTWORK_LIST);
    for (size_t row = 0; row < rows.size(); ++row) {
        for (size_t column = 0; column < std::size(kColumns); ++column) {
            std::string& text = rows[row].texts[column];
            if (m_shown[row].texts[column] == text) continue;
            ListView_SetItemText(list, static_cast<int>(row), static_cast<int>(column), text.data());
        }
    }
    m_shown = std::move(rows);
}

// Makes the rows those of the new list, with empty texts where they are new.
void SentWorkDialog::ChangeRows(const RowChange& change, const std::vector<SentWorkRow>& rows) {
    const HWND list = Item(IDC_SENTWORK_LIST);
    const int selected = ListView_GetNextItem(list, -1, LVNI_SELECTED);
    const LPath record = selected >= 0 ? m_shown[static_cast<size_t>(selected)].record : LPath();
    const auto first = m_shown.begin() + static_cast<ptrdiff_t>(change.first);
    m_shown.erase(first, first + static_cast<ptrdiff_t>(change.removed));
    LListViewChange listChange(list);
    for (size_t i = change.removed; i-- > 0;) listChange.Delete(static_cast<int>(change.first + i));
    for (size_t i = change.first; i < change.first + change.inserted; ++i) {
        LVITEMA item = {};
        item.iItem = static_cast<int>(i);
        listChange.Insert(item);
        m_shown.insert(m_shown.begin() + static_cast<ptrdiff_t>(i), SentWorkRow{rows[i].record, {}});
        if (rows[i].record != record || record.Empty()) continue;  // the selected one has moved
        constexpr UINT kState = LVIS_SELECTED | LVIS_FOCUSED;
        ListView_SetItemState(list, item.iItem, kState, kState);
    }
}

void SentWorkDialog::FillWidth() {
    const HWND list = Item(IDC_SENTWORK_LIST);
    int others = 0;
    for (int i = 0; i < kLastColumn; ++i) others += ListView_GetColumnWidth(list, i);
    // At least as wide as at first: a status must be legible.
    const int least = others * kColumns[kLastColumn].share / (100 - kColumns[kLastColumn].share);
    const int wanted = std::max(ClientWidth(list) - others, least);
    if (wanted != ListView_GetColumnWidth(list, kLastColumn))
        ListView_SetColumnWidth(list, kLastColumn, wanted);
}
