#include "ui/LListViewChange.h"

LListViewChange::LListViewChange(HWND list)
    : m_list(list), m_top(ListView_GetTopIndex(list)), m_count(ListView_GetItemCount(list)) {
    SendMessageA(m_list, WM_SETREDRAW, FALSE, 0);
}

void LListViewChange::Delete(int index) {
    ListView_DeleteItem(m_list, index);
    if (index < m_top) --m_top;
}

void LListViewChange::Insert(const LVITEMA& row) {
    SendMessageA(m_list, LVM_INSERTITEMA, 0, reinterpret_cast<LPARAM>(&row));
    if (m_top > 0 && row.iItem <= m_top) ++m_top;
}

LListViewChange::~LListViewChange() {
    SendMessageA(m_list, WM_SETREDRAW, TRUE, 0);
    RECT row = {};
    if (ListView_GetItemRect(m_list, 0, &row, LVIR_BOUNDS))
        ListView_Scroll(m_list, 0, (m_top - ListView_GetTopIndex(m_list)) * (row.bottom - row.top));
    // Rows paint over old rows, so the background is erased only when there are fewer of them; this avoids
    // flicker.
    RedrawWindow(m_list, nullptr, nullptr, RDW_VALIDATE | RDW_NOERASE);
    InvalidateRect(m_list, nullptr, ListView_GetItemCount(m_list) < m_count);
}
