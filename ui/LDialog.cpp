#include "ui/LDialog.h"

#include "base/LTrace.h"

// The window's user data (DWL_USER) points to the object and is cleared when either of them ends, so a late
// message never reaches a destroyed object. The result of a modal dialog is kept in the object: the
// platform's own answer is IDOK when a quit message ends the dialog, and the question would count as
// confirmed.

LDialog::~LDialog() {
    if (m_window == nullptr) return;
    const HWND window = m_window;
    SetWindowLongA(window, DWL_USER, 0);  // the derived part is destroyed: no more virtual calls
    m_window = nullptr;
    if (m_isModal)
        EndDialog(window, -1);
    else
        DestroyWindow(window);
}

bool LDialog::CreateWindowFromResource(int resource, HWND owner) {
    if (m_window != nullptr) return true;
    m_isModal = false;
    CreateDialogParamA(LInstance(), MAKEINTRESOURCEA(resource), owner, DialogProc,
                       reinterpret_cast<LPARAM>(this));
    if (m_window == nullptr) LTrace("LDialog::CreateWindowFromResource CreateDialogParam FAILED");
    return m_window != nullptr;
}

INT_PTR LDialog::RunModal(int resource, HWND owner) {
    if (m_window != nullptr) {
        LTrace("LDialog::RunModal the dialog is open already");
        return -1;
    }
    m_isModal = true;
    m_modalResult = -1;
    // The result is m_modalResult, not the platform's (see above).
    if (DialogBoxParamA(LInstance(), MAKEINTRESOURCEA(resource), owner, DialogProc,
                        reinterpret_cast<LPARAM>(this)) == -1)
        LTrace("LDialog::RunModal DialogBoxParam FAILED");
    m_isModal = false;
    return m_modalResult;
}

void LDialog::EndModal(INT_PTR result) {
    m_modalResult = result;
    EndDialog(m_window, result);
}

// Default: OK and Cancel end a modal dialog with their identifier.
bool LDialog::HandleMessage(UINT message, WPARAM wParam, LPARAM, LRESULT& result) {
    const WORD control = LOWORD(wParam);
    if (!m_isModal || message != WM_COMMAND || (control != IDOK && control != IDCANCEL)) return false;
    EndModal(control);
    result = 0;
    return true;
}

// F1 is answered by the window that owns the dialog, or the sheet of which it is a page. Not every platform
// passes it on to an owner.
static bool PassHelpOn(HWND window, LPARAM lParam) {
    while ((GetWindowLongA(window, GWL_STYLE) & WS_CHILD) != 0) window = GetParent(window);
    const HWND owner = GetWindow(window, GW_OWNER);
    if (owner != nullptr) SendMessageA(owner, WM_HELP, 0, lParam);
    return owner != nullptr;
}

INT_PTR CALLBACK LDialog::DialogProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        auto* dialog = reinterpret_cast<LDialog*>(lParam);
        SetWindowLongA(window, DWL_USER, static_cast<LONG>(lParam));
        dialog->m_window = window;
        if (GetWindow(window, GW_OWNER) != nullptr) LCentreOnOwner(window);
        return dialog->InitDialog() ? TRUE : FALSE;
    }
    auto* dialog = reinterpret_cast<LDialog*>(GetWindowLongA(window, DWL_USER));
    if (dialog == nullptr) return FALSE;

    if (message == WM_DESTROY) dialog->DestroyDialog();
    LRESULT result = 0;
    const bool handled = dialog->HandleMessage(message, wParam, lParam, result);
    if (message == WM_NCDESTROY) {
        SetWindowLongA(window, DWL_USER, 0);
        dialog->m_window = nullptr;
        return FALSE;
    }
    if (!handled) return message == WM_HELP && PassHelpOn(window, lParam) ? TRUE : FALSE;
    // The messages WM_CTLCOLOR... return a brush directly, all others by DWL_MSGRESULT.
    if (message >= WM_CTLCOLORMSGBOX && message <= WM_CTLCOLORSTATIC) return static_cast<INT_PTR>(result);
    SetWindowLongA(window, DWL_MSGRESULT, static_cast<LONG>(result));
    return TRUE;
}

void LModelessDialog::Close() {
    if (IsOpen()) DestroyWindow(Window());
}

bool LModelessDialog::PreTranslateMessage(MSG&) {
    return false;
}

void LModelessDialog::RunMessageLoop(int resource) {
    if (!Create(resource, nullptr)) return;
    MSG message;
    while (IsOpen() && GetMessageA(&message, nullptr, 0, 0) > 0) {
        if (PreTranslateMessage(message)) continue;
        if (IsOpen() && IsDialogMessageA(Window(), &message)) continue;
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
    Close();
}
