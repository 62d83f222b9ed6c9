#include "app/window/HoldButton_win.h"

#include "res/Ids.h"

namespace {

// Who holds the button down; none while it is up.
constexpr char kHolderProperty[] = "HoldButtonHolder";
enum class Holder : ULONG_PTR { None, Hand, Device };

constexpr LPARAM kWasDown = 1L << 30;  // of a key message: it repeats

Holder HolderOf(HWND button) {
    return static_cast<Holder>(reinterpret_cast<ULONG_PTR>(GetPropA(button, kHolderProperty)));
}

// The last who presses holds it: the release of a device that was unplugged never comes.
void SetHolder(HWND button, Holder holder) {
    if (holder == HolderOf(button) && holder != Holder::Device) return;
    if (holder == Holder::None)
        RemovePropA(button, kHolderProperty);
    else
        SetPropA(button, kHolderProperty, reinterpret_cast<HANDLE>(holder));
    SendMessageA(GetParent(button), WM_HOLDBUTTON, static_cast<WPARAM>(GetDlgCtrlID(button)),
                 holder != Holder::None);
}

// What the button's user did by this message.
void Follow(HWND button, UINT message, WPARAM wParam, LPARAM lParam) {
    const Holder holder = HolderOf(button);
    switch (message) {
        case WM_LBUTTONDOWN:
        case WM_LBUTTONDBLCLK:
            SetHolder(button, Holder::Hand);
            break;
        case WM_KEYDOWN:
            if (wParam == VK_SPACE && (lParam & kWasDown) == 0) SetHolder(button, Holder::Hand);
            break;
        case WM_KEYUP:
            if (wParam == VK_SPACE && holder == Holder::Hand) SetHolder(button, Holder::None);
            break;
        case WM_LBUTTONUP:
        case WM_CAPTURECHANGED:
        case WM_CANCELMODE:
        case WM_KILLFOCUS:
            if (holder == Holder::Hand) SetHolder(button, Holder::None);
            break;
        case WM_ENABLE:
            if (wParam != FALSE) break;
            SendMessageA(button, BM_SETSTATE, FALSE, 0);  // or it would come back looking pressed
            SetHolder(button, Holder::None);
            break;
        case WM_DESTROY:
            RemovePropA(button, kHolderProperty);
            break;
        default:
            break;
    }
}

LRESULT CALLBACK HoldButtonProc(HWND button, UINT message, WPARAM wParam, LPARAM lParam) {
    const auto original = reinterpret_cast<WNDPROC>(GetWindowLongA(button, GWL_USERDATA));
    const LRESULT result = CallWindowProcA(original, button, message, wParam, lParam);
    Follow(button, message, wParam, lParam);
    return result;
}

}  // namespace

void AttachHoldButton(HWND button) {
    const LONG original = GetWindowLongA(button, GWL_WNDPROC);
    SetWindowLongA(button, GWL_USERDATA, original);
    SetWindowLongA(button, GWL_WNDPROC, reinterpret_cast<LONG>(HoldButtonProc));
}

// Only shown as pressed: a mouse message would take the keyboard from the notes that are being typed, and the
// capture, which the next click in another program would end.
bool PressHoldButton(HWND button) {
    if (!IsWindowEnabled(button) || HolderOf(button) == Holder::Hand) return false;
    SendMessageA(button, BM_SETSTATE, TRUE, 0);
    SetHolder(button, Holder::Device);
    return true;
}

void ReleaseHoldButton(HWND button) {
    if (HolderOf(button) != Holder::Device) return;
    SendMessageA(button, BM_SETSTATE, FALSE, 0);
    SetHolder(button, Holder::None);
}
