#include "ui/LShell.h"

#include <shellapi.h>

#include <string>

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

bool LStartProgram(const LPath& program, const char* arguments) {
    std::string line = "\"" + std::string(program.View()) + "\" " + arguments;
    STARTUPINFOA start = {};
    start.cb = sizeof start;
    PROCESS_INFORMATION process = {};
    if (!CreateProcessA(program.c_str(), line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start,
                        &process))
        return false;
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return true;
}
