#pragma once

#include <windows.h>

// The columns of the list of dictations. Those of date, time, duration and priority are as wide as the widest
// text of the user's locale, at the list's font, and never narrower than designed; the notes have what is
// left. At large fonts names and notes share what is left, until the user gives the names a width.
// Units:  widths in pixels.
// Thread: the window thread.
class ListColumns {
public:
    enum : int { Name, Date, Time, Duration, Priority, Notes, Count };

    // Adds the columns to a list view, which has its font already.
    void Attach(HWND list);
    // Gives the notes the room that the others leave; called when the list or a column has changed its size.
    void Fit();

private:
    int WidthOf(int column) const;

    HWND m_list = nullptr;
    int m_nameWidth = 0;  // that was given here
    bool m_isFitting = false;
};
