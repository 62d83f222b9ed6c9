#include "hardware/FreeHotKey_win.h"

bool IsHotKeyFree(HWND window, const HotKey& hotKey) {
    constexpr int kNumber = 0xBFFF;  // the last that a program may use
    const bool isFree = RegisterHotKey(window, kNumber, static_cast<UINT>(hotKey.modifiers),
                                       static_cast<UINT>(hotKey.key.value_or(0))) != 0;
    if (isFree) UnregisterHotKey(window, kNumber);
    return isFree;
}
