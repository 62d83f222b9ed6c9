#pragma once

#include "ui/LWin.h"

// Base of every dialog: an object whose window is made from a dialog resource. The window has to be destroyed
// before the object, so that DestroyDialog runs on a complete object: RunModal and RunMessageLoop see to that
// themselves, other users call Close. The destructor destroys a window that still exists, without
// DestroyDialog.
// Errors: a window that cannot be created is traced.
// Thread: the window thread.
class LDialog {
public:
    LDialog() = default;
    virtual ~LDialog();
    LDialog(const LDialog&) = delete;
    LDialog& operator=(const LDialog&) = delete;

    HWND Window() const { return m_window; }
    bool IsOpen() const { return m_window != nullptr; }
    HWND Item(int control) const { return GetDlgItem(m_window, control); }

    // Shows the dialog modally and returns the argument of EndModal; -1 when the window cannot be created, is
    // open already, or ends without an answer (a quit message, or another program destroys it).
    INT_PTR RunModal(int resource, HWND owner);

protected:
    bool CreateWindowFromResource(int resource, HWND owner);
    void EndModal(INT_PTR result);
    // Dialog procedure of every window; the creation parameter of WM_INITDIALOG is the object.
    static INT_PTR CALLBACK DialogProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

    // The window and its controls exist. Return true to let the platform choose the focus.
    virtual bool InitDialog() { return true; }
    // The window is about to be destroyed.
    virtual void DestroyDialog() {}
    // True when the message is handled; result then becomes the dialog's message result.
    virtual bool HandleMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result);

private:
    HWND m_window = nullptr;
    bool m_isModal = false;
    INT_PTR m_modalResult = -1;
};

// A modeless dialog. A program's top-level window also has the message loop.
class LModelessDialog : public LDialog {
public:
    bool Create(int resource, HWND owner) { return CreateWindowFromResource(resource, owner); }
    void Close();

    // Called for each message before the platform's dialog navigation; true consumes it.
    virtual bool PreTranslateMessage(MSG& message);

    // Creates the dialog and runs a message loop until its window is destroyed. A quit message destroys the
    // window and ends the loop.
    void RunMessageLoop(int resource);
};
