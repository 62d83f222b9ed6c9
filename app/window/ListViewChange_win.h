#pragma once

#include <windows.h>

// A change of a list view's rows. While it lives nothing is painted; at its end the rows that were being looked
// at stand where they stood, and the picture is made anew as a whole: a list view that loses rows may leave
// them painted. Thread: the window thread.
class ListViewChange {
public:
    explicit ListViewChange(HWND list);
    ~ListViewChange();
    ListViewChange(const ListViewChange&) = delete;
    ListViewChange& operator=(const ListViewChange&) = delete;

    void Delete(int index);

private:
    HWND m_list;
    int m_top;    // the row that shall be the first to be seen
    int m_count;  // rows at the beginning
};
