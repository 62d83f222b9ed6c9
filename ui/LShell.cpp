#include "ui/LShell.h"

#include <shellapi.h>

constexpr INT_PTR kShellErrors = 32;  // the highest

LPath LProgramPath() {
    char path[kPathSize] = {};
    const DWORD length = GetModuleFileNameA(nullptr, path, sizeof path);
    return length < sizeof path ? LPath({path, length}) : LPath();
}

bool LOpenDocument(HWND owner, const char* document) {
    const HINSTANCE result = ShellExecuteA(owner, nullptr, document, nullptr, nullptr, SW_SHOWNORMAL);
    return reinterpret_cast<INT_PTR>(result) > kShellErrors;
}
