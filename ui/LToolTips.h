#pragma once

#include "ui/LWin.h"

// The tool-tip window of a dialog: one text for each control. Closed with its object or by Close.
class LToolTips {
public:
    ~LToolTips() { Close(); }

    bool Create(HWND dialog);
    void Add(int control, const char* text);
    void Close();

private:
    HWND m_dialog = nullptr;
    HWND m_window = nullptr;
};
