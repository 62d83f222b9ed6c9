#include "ui/LCentre.h"

#include "base/LText.h"

// The platform puts message boxes in the middle of the screen or at its corner. It tells a hook before it
// activates and shows them.

namespace {

constexpr char kDialogClass[] = "#32770";

bool IsDialog(HWND window) {
    char name[16] = {};
    GetClassNameA(window, name, sizeof name);
    return LEqualNoCase(name, kDialogClass);
}

}  // namespace

LCentreNext::LCentreNext()
    : m_outer(s_innermost), m_hook(SetWindowsHookExA(WH_CBT, Watch, nullptr, GetCurrentThreadId())) {
    s_innermost = this;
}

LCentreNext::~LCentreNext() {
    s_innermost = m_outer;
    if (m_hook != nullptr) UnhookWindowsHookEx(m_hook);
}

LRESULT CALLBACK LCentreNext::Watch(int code, WPARAM wParam, LPARAM lParam) {
    LCentreNext& next = *s_innermost;
    const HWND window = reinterpret_cast<HWND>(wParam);
    // A window that is not visible yet: the owner, which is a dialog too, is activated again later.
    if (code == HCBT_ACTIVATE && !next.m_isDone && IsDialog(window) && !IsWindowVisible(window)) {
        next.m_isDone = true;
        LCentreOnOwner(window);
    }
    return CallNextHookEx(next.m_hook, code, wParam, lParam);
}
