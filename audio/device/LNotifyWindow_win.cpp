#include "audio/device/LNotifyWindow_win.h"

static constexpr UINT kNotifyMessage = WM_USER;

LNotifyWindow::LNotifyWindow(const char* className, Owner& owner) {
    WNDCLASSA windowClass = {};
    windowClass.lpfnWndProc = WindowProc;
    windowClass.hInstance = GetModuleHandleA(nullptr);
    windowClass.lpszClassName = className;
    RegisterClassA(&windowClass);  // fails harmlessly for every window but the first of its class
    m_window.Reset(CreateWindowExA(0, className, "", WS_POPUP, 0, 0, 0, 0, nullptr, nullptr,
                                   windowClass.hInstance, nullptr));
    if (m_window) SetWindowLongA(m_window.Get(), GWL_USERDATA, reinterpret_cast<LONG>(&owner));
}

void LNotifyWindow::Post() const {
    PostMessageA(m_window.Get(), kNotifyMessage, 0, 0);
}

LRESULT CALLBACK LNotifyWindow::WindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* owner = reinterpret_cast<Owner*>(GetWindowLongA(window, GWL_USERDATA));
    if (message != kNotifyMessage || !owner) return DefWindowProcA(window, message, wParam, lParam);
    owner->EvNotify();
    return 0;
}
