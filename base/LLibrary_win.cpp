#include "base/LLibrary_win.h"

#include "base/LFile.h"
#include "base/LSystemFunction_win.h"

namespace {

LPath SystemFolder() {
    char path[kPathSize] = {};
    const UINT length = GetSystemDirectoryA(path, sizeof path);
    return length < sizeof path ? LPath({path, length}) : LPath();
}

LPath ProgramFolder() {
    char path[kPathSize] = {};
    const DWORD length = GetModuleFileNameA(nullptr, path, sizeof path);
    return length < sizeof path ? LPath(LFolderOf({path, length})) : LPath();
}

LPath FileIn(const LPath& folder, const char* fileName) {
    return folder.Empty() ? LPath() : LPath::Join(folder.View(), fileName);
}

}  // namespace

LPath LWindowsFolder() {
    char path[kPathSize] = {};
    const UINT length = GetWindowsDirectoryA(path, sizeof path);
    return length < sizeof path ? LPath({path, length}) : LPath();
}

LLibrary LLoadLibraryAt(const LPath& path) {
    if (!LIsFullPath(path.View())) return {};
    const UINT mode = SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX);
    LLibrary library(LoadLibraryExA(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH));
    SetErrorMode(mode);
    return library;
}

void LIgnoreLibrariesOfCurrentFolder() {
    if (const auto set = LSystemFunction<BOOL(WINAPI*)(LPCSTR)>("SetDllDirectoryA")) set("");
}

void LKeepToSystemLibraries() {
    constexpr DWORD kSystemFolder = 0x800;  // LOAD_LIBRARY_SEARCH_SYSTEM32
    if (const auto set = LSystemFunction<BOOL(WINAPI*)(DWORD)>("SetDefaultDllDirectories"))
        set(kSystemFolder);
}

LLibrary LLoadAddOn(const char* fileName) {
    for (const LPath& folder : {ProgramFolder(), SystemFolder()})
        if (LLibrary library = LLoadLibraryAt(FileIn(folder, fileName))) return library;
    return {};
}

LLibrary LLoadSystemLibrary(const char* fileName) {
    return LLoadLibraryAt(FileIn(SystemFolder(), fileName));
}

LPath LPlatformProgram(const char* fileName) {
    for (const LPath& folder : {SystemFolder(), LWindowsFolder()})
        if (const LPath path = FileIn(folder, fileName); !path.Empty() && LFile::Exists(path)) return path;
    return {};
}
