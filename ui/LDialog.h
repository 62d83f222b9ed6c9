#pragma once

#include "ui/LWin.h"

// Base of every dialog: an object whose window is made from a dialog resource. The window belongs to the
// object and has to go first, so that DestroyDialog finds the object whole: a modal one and one that runs a
// message loop see to it themselves, others call Close. An object that goes before its window takes the
// window with it, without DestroyDialog.
// Errors: a window that cannot be created is traced. Thread: the window thread.
class LDialog {
public:
    LDialog() = default;
    virtual ~LDialog();
    LDialog(const LDialog&) = delete;
    LDialog& operator=(const LDialog&) = delete;

    HWND Window() const { return m_window; }
    bool IsOpen() const { return m_window != nullptr; }
    HWND Item(int control) const { return GetDlgItem(m_window, control); }

    // Shows the dialog modally; returns what EndModal was given, -1 when it could not be created, is open
    // already or ends without an answer (the program is told to quit, another program destroys the window).
    INT_PTR RunModal(int resource, HWND owner);

protected:
    bool CreateWindowFromResource(int resource, HWND owner);
    void EndModal(INT_PTR result);
    // For windows that the platform makes from a resource; the creation parameter of WM_INITDIALOG is the
    // object.
    static INT_PTR CALLBACK DialogProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

    // The window exists, its controls too; true lets the platform choose the focus.
    virtual bool InitDialog() { return true; }
    // The window is about to go.
    virtual void DestroyDialog() {}
    // True when the message is dealt with; result then goes back as the dialog's message result.
    virtual bool HandleMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result);

private:
    HWND m_window = nullptr;
    bool m_isModal = false;
    INT_PTR m_modalResult = -1;
};

// A dialog that lives beside others, with a message loop of its own when it is a program's top-level window.
class LModelessDialog : public LDialog {
public:
    bool Create(int resource, HWND owner) { return CreateWindowFromResource(resource, owner); }
    void Close();

    // Offered each message before the platform's dialog navigation; true takes it.
    virtual bool PreTranslateMessage(MSG& message);

    // Creates the dialog and runs until its window is gone. When the queue yields no more, since the program
    // is told to quit, the window is destroyed.
    void RunMessageLoop(int resource);
};
