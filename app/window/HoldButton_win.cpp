#include "app/window/HoldButton_win.h"

#include "res/Ids.h"

namespace {

// The holder of the button, kept as a window property; None while it is up.
constexpr char kHolderProperty[] = "HoldButtonHolder";
enum class Holder : ULONG_PTR { None, Hand, Device };

constexpr LPARAM kWasDown = 1L << 30;  // of a key message: the key repeats

Holder HolderOf(HWND button) {
    return static_cast<Holder>(reinterpret_cast<ULONG_PTR>(GetPropA(button, kHolderProperty)));
}

// Changes the holder and tells the dialog. A new press always takes over: the release of a device that was
// unplugged never comes, and must not block the mouse.
void SetHolder(HWND button, Holder holder) {
    if (holder == HolderOf(button) && holder != Holder::Device) return;
    if (holder == Holder::None)
        RemovePropA(button, kHolderProperty);
    else
        SetPropA(button, kHolderProperty, reinterpret_cast<HANDLE>(holder));
    SendMessageA(GetParent(button), WM_HOLDBUTTON, static_cast<WPARAM>(GetDlgCtrlID(button)),
                 holder != Holder::None);
}

// Finds out from a message of the button whether the user presses or releases it. Losing the capture or the
// focus is a release.
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
        case WM_CAPTURECHANGED:
            // A held space bar repeats, and each time the button takes the capture from itself.
            if (reinterpret_cast<HWND>(lParam) == button) break;
            [[fallthrough]];
        case WM_LBUTTONUP:
        case WM_CANCELMODE:
        case WM_KILLFOCUS:
            if (holder == Holder::Hand) SetHolder(button, Holder::None);
            break;
        case WM_ENABLE:
            if (wParam != FALSE) break;
            // Otherwise it would look pressed when it is enabled again.
            SendMessageA(button, BM_SETSTATE, FALSE, 0);
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

// Shows the button as pressed without sending it mouse messages. Those were rejected: they take the focus
// from the notes that the user is typing, and the mouse capture, which the next click in another program
// ends.
bool PressHoldButton(HWND button) {
    if (!IsWindowEnabled(button) || HolderOf(button) == Holder::Hand) return false;
    SendMessageA(button, BM_SETSTATE, TRUE, 0);
    SetHolder(button, Holder::Device);
    return true;
}

bool IsHeldByHand(HWND button) {
    return HolderOf(button) == Holder::Hand;
}

void ReleaseHoldButton(HWND button) {
    if (HolderOf(button) != Holder::Device) return;
    SendMessageA(button, BM_SETSTATE, FALSE, 0);
    SetHolder(button, Holder::None);
}
