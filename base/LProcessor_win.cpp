#include <windows.h>

#include "base/LProcessor.h"
#include "base/LSystemFunction_win.h"

// Windows 98 and Me save the registers but cannot be asked, and Windows 95 is older than the registers: those
// three are told apart by version. All others are asked for SSE, not for SSE2: the registers are the same,
// and Windows 2000 does not know the question for SSE2.
bool LPlatformSavesSse() {
    OSVERSIONINFOA version = {};
    version.dwOSVersionInfoSize = sizeof version;
    if (!GetVersionExA(&version)) return false;
    if (version.dwPlatformId == VER_PLATFORM_WIN32_WINDOWS)
        return version.dwMajorVersion > 4 || version.dwMinorVersion >= 10;
    const auto has = LSystemFunction<BOOL(WINAPI*)(DWORD)>("IsProcessorFeaturePresent");
    return has && has(PF_XMMI_INSTRUCTIONS_AVAILABLE);
}
