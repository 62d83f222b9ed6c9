#pragma once

#include <string>

#include "ui/LWin.h"

// The tool-tip window of a dialog. A tip goes with a click or a key, and comes again when the mouse has been
// elsewhere. Errors: traced; there are no tool tips then.
// Thread: the window thread.
class LToolTips {
public:
    ~LToolTips() { Close(); }

    bool Create(HWND dialog);
    // Gives a control a tip, which is asked for when it is to be shown: the dialog gets TTN_NEEDTEXTA with
    // the control's handle as identifier. An empty answer shows none.
    void Add(int control);
    // Whether the user has clicked or typed since the mouse came here: no tip is to be shown.
    bool IsHushed() const { return m_hushedAt != nullptr; }
    // The tip of a part of a control, such as a row of a list; empty: none. It replaces that of the part
    // before.
    void SetPart(HWND control, const RECT& part, const std::string& text);
    // To be called with each message of the dialog's thread, before it is dispatched.
    void Watch(const MSG& message);
    void Close();

private:
    void Hush(HWND at);

    HWND m_dialog = nullptr;
    HWND m_window = nullptr;
    RECT m_part = {};
    HWND m_partControl = nullptr;
    UINT_PTR m_partTool = 0;
    HWND m_hushedAt = nullptr;  // the control where the user clicked
};
