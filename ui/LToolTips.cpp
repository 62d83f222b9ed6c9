#include "ui/LToolTips.h"

#include <commctrl.h>

#include "base/LTrace.h"

bool LToolTips::Create(HWND dialog) {
    m_dialog = dialog;
    // No owner: under Wine a visible window that owns another window cannot be made top-most, and the main
    // window's "Float" would have no effect before the next start.
    m_window =
        CreateWindowExA(WS_EX_TOPMOST, TOOLTIPS_CLASSA, nullptr, WS_POPUP | TTS_ALWAYSTIP, CW_USEDEFAULT,
                        CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, nullptr, nullptr, LInstance(), nullptr);
    if (m_window == nullptr) LTrace("LToolTips::Create CreateWindowEx FAILED");
    return m_window != nullptr;
}

void LToolTips::Add(int control, const char* text) {
    if (m_window == nullptr) return;
    TOOLINFOA info = {};
    info.cbSize = TTTOOLINFOA_V1_SIZE;  // first version: the oldest common controls refuse a larger one
    info.uFlags = TTF_IDISHWND | TTF_SUBCLASS;
    info.hwnd = m_dialog;
    info.uId = reinterpret_cast<UINT_PTR>(GetDlgItem(m_dialog, control));
    info.lpszText = const_cast<char*>(text);  // the control copies it
    SendMessageA(m_window, TTM_ADDTOOLA, 0, reinterpret_cast<LPARAM>(&info));
}

void LToolTips::Close() {
    if (m_window != nullptr && IsWindow(m_window)) DestroyWindow(m_window);
    m_window = nullptr;
}
