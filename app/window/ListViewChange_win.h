#pragma once

#include <windows.h>

// A change of several rows of a list view. During its lifetime nothing is painted; the destructor restores
// the visible rows and repaints the whole list once. The platform's list view scrolls without repainting
// moved rows, and a deleted row could stay visible, so that the next command hit another dictation.
// Thread: the window thread.
class ListViewChange {
public:
    explicit ListViewChange(HWND list);
    ~ListViewChange();
    ListViewChange(const ListViewChange&) = delete;
    ListViewChange& operator=(const ListViewChange&) = delete;

    // Deletes a row.
    void Delete(int index);

private:
    HWND m_list;
    int m_top;    // the row that is to be the first visible one
    int m_count;  // number of rows before the change
};
