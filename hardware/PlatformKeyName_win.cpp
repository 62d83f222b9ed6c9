#include "hardware/PlatformKeyName_win.h"

#include <windows.h>

std::string PlatformKeyName(int32_t virtualKey, bool isExtended) {
    constexpr UINT kToScanCode = 0;
    constexpr LONG kExtended = 1L << 24;
    const UINT scanCode = MapVirtualKeyA(static_cast<UINT>(virtualKey), kToScanCode) & 0xFF;
    if (scanCode == 0) return {};
    char name[260];
    const LONG key = static_cast<LONG>(scanCode << 16) | (isExtended ? kExtended : 0);
    const int length = GetKeyNameTextA(key, name, sizeof name);
    return length > 0 ? std::string(name, static_cast<size_t>(length)) : std::string();
}
