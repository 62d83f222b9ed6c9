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

LProgressDialog::LProgressDialog(HWND owner, std::string_view title)
    : m_owner(owner),
      m_ownerWasEnabled(owner != nullptr && IsWindowEnabled(owner)),
      m_title(title),
      m_startTick(GetTickCount()) {
    ++s_running;
    if (m_ownerWasEnabled) EnableWindow(m_owner, FALSE);
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

// The platform shortens one line at a time, and needs room for the dots.
static std::string FitLine(HDC dc, std::string_view line, int width) {
    constexpr size_t kDots = 4;
    std::string text(line);
    text.resize(line.size() + kDots + 1);
    RECT box = {0, 0, width, 0};
    DrawTextA(dc, text.data(), static_cast<int>(line.size()), &box,
              DT_PATH_ELLIPSIS | DT_MODIFYSTRING | DT_CALCRECT | DT_SINGLELINE | DT_NOPREFIX);
    return text.c_str();
}

void LProgressDialog::ShowStatus() {
    const HWND place = Item(IDC_PROGRESS_STATUS);
    RECT box = {};
    GetClientRect(place, &box);
    const HDC dc = GetDC(place);
    const HGDIOBJ old = SelectObject(dc, reinterpret_cast<HFONT>(SendMessageA(place, WM_GETFONT, 0, 0)));
    const size_t first = std::min(m_status.find('\n'), m_status.size());
    std::string shown = FitLine(dc, std::string_view(m_status).substr(0, first), static_cast<int>(box.right));
    if (first < m_status.size())
        shown +=
            "\n" + FitLine(dc, std::string_view(m_status).substr(first + 1), static_cast<int>(box.right));
    SelectObject(dc, old);
    ReleaseDC(place, dc);
    LSetWindowText(place, shown);
}

void LProgressDialog::Pump() {
    if (!m_isShown && GetTickCount() - m_startTick >= kShowAfterMs) {
        m_isShown = true;  // tried once; if the window cannot be created the operation goes on without it
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
        if (IsOpen() && IsDialogMessageA(Window(), &message)) continue;
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
}
