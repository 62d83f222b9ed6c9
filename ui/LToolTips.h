#pragma once

#include "ui/LWin.h"

// The tool-tip window of a dialog: one text for each control. Errors: traced; there are no tool tips then.
// Thread: the window thread.
class LToolTips {
public:
    ~LToolTips() { Close(); }

    bool Create(HWND dialog);
    // The control's text is copied.
    void Add(int control, const char* text);
    void Close();

private:
    HWND m_dialog = nullptr;
    HWND m_window = nullptr;
};
