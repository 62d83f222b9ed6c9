#include "ui/LToolTips.h"

#include <commctrl.h>

#include "base/LTrace.h"

// The platform shows the tip of one tool once, until the mouse has been at another. So the part under the
// mouse has two tools in turn; the other one covers nothing.

namespace {

constexpr int kWidth = 300;  // pixels; longer texts are broken into lines

TOOLINFOA InfoOf(HWND window, UINT_PTR tool) {
    TOOLINFOA info = {};
    info.cbSize = TTTOOLINFOA_V1_SIZE;  // first version: the oldest common controls refuse a larger one
    info.hwnd = window;
    info.uId = tool;
    return info;
}

}  // namespace

bool LToolTips::Create(HWND dialog) {
    m_dialog = dialog;
    // No owner: under Wine a visible window that owns another window cannot be made top-most, and the main
    // window's "Float" would have no effect before the next start.
    m_window = CreateWindowExA(WS_EX_TOPMOST, TOOLTIPS_CLASSA, nullptr,
                               WS_POPUP | TTS_ALWAYSTIP | TTS_NOPREFIX, CW_USEDEFAULT, CW_USEDEFAULT,
                               CW_USEDEFAULT, CW_USEDEFAULT, nullptr, nullptr, LInstance(), nullptr);
    if (m_window == nullptr) LTrace("LToolTips::Create CreateWindowEx FAILED");
    if (m_window != nullptr) SendMessageA(m_window, TTM_SETMAXTIPWIDTH, 0, kWidth);
    return m_window != nullptr;
}

void LToolTips::Add(int control) {
    if (m_window == nullptr) return;
    TOOLINFOA info = InfoOf(m_dialog, reinterpret_cast<UINT_PTR>(GetDlgItem(m_dialog, control)));
    info.uFlags = TTF_IDISHWND | TTF_SUBCLASS;
    info.lpszText = LPSTR_TEXTCALLBACKA;
    SendMessageA(m_window, TTM_ADDTOOLA, 0, reinterpret_cast<LPARAM>(&info));
}

void LToolTips::SetPart(HWND control, const RECT& part, const std::string& text) {
    if (m_window == nullptr || EqualRect(&part, &m_part)) return;
    m_part = part;
    if (m_partTool != 0) {
        TOOLINFOA old = InfoOf(m_partControl, m_partTool);
        SendMessageA(m_window, TTM_DELTOOLA, 0, reinterpret_cast<LPARAM>(&old));
    }
    m_partControl = control;
    m_partTool = m_partTool == 1 ? 2 : 1;
    TOOLINFOA info = InfoOf(control, m_partTool);
    info.uFlags = TTF_SUBCLASS;
    info.rect = part;
    info.lpszText = const_cast<char*>(text.c_str());
    if (text.empty())
        m_partTool = 0;
    else
        SendMessageA(m_window, TTM_ADDTOOLA, 0, reinterpret_cast<LPARAM>(&info));
}

// Takes away the tip that is shown. One that is about to be shown asks for its text first, and that of a part
// is dropped.
void LToolTips::Hush(HWND at) {
    m_hushedAt = at;
    if (m_window == nullptr) return;
    for (const WPARAM isActive : {FALSE, TRUE}) SendMessageA(m_window, TTM_ACTIVATE, isActive, 0);
    SetPart(at, {}, {});
}

void LToolTips::Watch(const MSG& message) {
    switch (message.message) {
        case WM_LBUTTONDOWN:
        case WM_RBUTTONDOWN:
        case WM_MBUTTONDOWN:
        case WM_KEYDOWN:
        case WM_SYSKEYDOWN:
            Hush(message.hwnd);
            break;
        case WM_MOUSEMOVE:
            if (message.hwnd != m_hushedAt) m_hushedAt = nullptr;
            break;
        default:
            break;
    }
}

void LToolTips::Close() {
    if (m_window != nullptr && IsWindow(m_window)) DestroyWindow(m_window);
    m_window = nullptr;
}
