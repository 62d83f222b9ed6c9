#include "ui/LProgressDialog.h"

#include <commctrl.h>

#include <algorithm>

#include "res/Ids.h"

// The operation stays on the window thread, so it may use everything that belongs to this thread without
// locks; in return it must call its context often enough for the window to answer. Commands that arrive
// through the messages are refused by their receivers (LModalRunner), because the owner's disabling stops
// only mouse and keyboard.

constexpr DWORD kShowAfterMs = 300;
constexpr int kBarSteps = 1000;

// Operations can be nested; a cancel for all holds until the outermost has ended.
static int s_running = 0;
static bool s_cancelAll = false;

void LProgressDialog::CancelRunning() {
    s_cancelAll = s_running > 0;
}

// Keys and buttons that go down. The owner is disabled only once the dialog is there: a window manager that
// gives it the keyboard at that moment, since another dialog has closed, would leave the keyboard nowhere.
// What is released belongs to a press from before.
static bool IsInput(UINT message) {
    switch (message) {
        case WM_KEYDOWN:
        case WM_SYSKEYDOWN:
        case WM_CHAR:
        case WM_SYSCHAR:
        case WM_LBUTTONDOWN:
        case WM_LBUTTONDBLCLK:
        case WM_RBUTTONDOWN:
        case WM_MBUTTONDOWN:
        case WM_NCLBUTTONDOWN:
        case WM_NCLBUTTONDBLCLK:
        case WM_NCRBUTTONDOWN:
            return true;
        default:
            return false;
    }
}

LProgressDialog::LProgressDialog(HWND owner, std::string_view title)
    : m_owner(owner),
      m_ownerWasEnabled(owner != nullptr && IsWindowEnabled(owner)),
      m_title(title),
      m_startTick(GetTickCount()) {
    ++s_running;
}

LProgressDialog::~LProgressDialog() {
    // The owner is enabled before the dialog is destroyed; otherwise the platform would activate a window of
    // another program.
    if (m_ownerWasEnabled && IsWindow(m_owner)) EnableWindow(m_owner, TRUE);
    Close();
    if (--s_running == 0) s_cancelAll = false;
}

ProcessResult LProgressDialog::Run(LProcess& process, HWND owner, std::string_view title,
                                   std::string& error) {
    LProgressDialog dialog(owner, title);
    const ProcessResult result = process.Process(dialog);
    error = dialog.m_error;
    return result;
}

bool LProgressDialog::InitDialog() {
    SetWindowTextA(Window(), m_title.c_str());
    SendMessageA(Item(IDC_PROGRESS_BAR), PBM_SETRANGE, 0, MAKELPARAM(0, kBarSteps));
    ShowStatus();
    return true;
}

bool LProgressDialog::HandleMessage(UINT message, WPARAM wParam, LPARAM, LRESULT& result) {
    const bool isCancel = message == WM_CLOSE || (message == WM_COMMAND && LOWORD(wParam) == IDCANCEL);
    if (!isCancel) return false;
    m_cancelled = true;
    EnableWindow(Item(IDCANCEL), FALSE);
    result = 0;
    return true;
}

bool LProgressDialog::CancelRequested() {
    Pump();
    return m_cancelled || s_cancelAll;
}

void LProgressDialog::SetProgress(double fraction) {
    m_fraction = fraction;
    Pump();
}

void LProgressDialog::SetStatus(std::string_view text) {
    m_status = text;
    if (IsOpen()) ShowStatus();
    Pump();
}

void LProgressDialog::SetTitle(std::string_view text) {
    m_title = text;
    if (IsOpen()) LSetWindowText(Window(), m_title);
    Pump();
}

void LProgressDialog::ShowStatus() {
    const HWND place = Item(IDC_PROGRESS_STATUS);
    RECT box = {};
    GetClientRect(place, &box);
    const LTextMeasure measure(place);
    const int width = static_cast<int>(box.right);
    const std::string_view status = m_status;
    const size_t end = std::min(status.find('\n'), status.size());
    std::string shown = measure.Fit(status.substr(0, end), width);
    if (end < status.size()) shown += "\n" + measure.Fit(status.substr(end + 1), width);
    LSetWindowText(place, shown);
}

void LProgressDialog::Pump() {
    if (!m_isShown && GetTickCount() - m_startTick >= kShowAfterMs) {
        m_isShown = true;  // tried once; if the window cannot be created the operation goes on without it
        if (m_ownerWasEnabled) EnableWindow(m_owner, FALSE);
        if (Create(IDD_PROGRESS, IsWindow(m_owner) ? m_owner : nullptr)) ShowWindow(Window(), SW_SHOW);
    }
    if (IsOpen())
        SendMessageA(Item(IDC_PROGRESS_BAR), PBM_SETPOS, static_cast<WPARAM>(m_fraction * kBarSteps + 0.5),
                     0);

    MSG message;
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
        // The program is to end: the operation is cancelled, and the message is passed on to the outer loop.
        if (message.message == WM_QUIT) {
            m_cancelled = true;
            PostQuitMessage(static_cast<int>(message.wParam));
            return;
        }
        if (!m_isShown && IsInput(message.message)) continue;
        if (IsOpen() && IsDialogMessageA(Window(), &message)) continue;
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
}
