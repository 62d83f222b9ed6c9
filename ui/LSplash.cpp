#include "ui/LSplash.h"

#include "res/Ids.h"

constexpr UINT kTimer = 1;
constexpr UINT kShownMs = 2000;

void LSplash::Show(HWND owner) {
    if (Create(IDD_SPLASH, owner)) ShowWindow(Window(), SW_SHOWNOACTIVATE);
}

bool LSplash::InitDialog() {
    RECT box;
    GetWindowRect(Window(), &box);
    const int x = (GetSystemMetrics(SM_CXSCREEN) - (box.right - box.left)) / 2;
    const int y = (GetSystemMetrics(SM_CYSCREEN) - (box.bottom - box.top)) / 2;
    SetWindowPos(Window(), nullptr, x, y, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    SetTimer(Window(), kTimer, kShownMs, nullptr);
    return false;  // the focus stays where it is
}

bool LSplash::HandleMessage(UINT message, WPARAM, LPARAM, LRESULT& result) {
    if (message != WM_TIMER && message != WM_LBUTTONDOWN) return false;
    result = 0;
    Close();
    return true;
}
