#pragma once

#include <windows.h>

#include <commctrl.h>

// A change of several rows of a list view. During its lifetime nothing is painted; the destructor restores
// the visible rows and repaints the whole list once. The platform's list view scrolls without repainting
// moved rows, and a deleted row could stay visible, so that the next command hit another dictation.
// Thread: the window thread.
class LListViewChange {
public:
    explicit LListViewChange(HWND list);
    ~LListViewChange();
    LListViewChange(const LListViewChange&) = delete;
    LListViewChange& operator=(const LListViewChange&) = delete;

    // Deletes a row.
    void Delete(int index);
    // Inserts a row. One above the visible rows leaves those in view; one in the first line of a list that
    // was not scrolled is seen.
    void Insert(const LVITEMA& row);

private:
    HWND m_list;
    int m_top;    // the row that is to be the first visible one
    int m_count;  // number of rows before the change
};
