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

// What Windows' own libraries ask for by bare name, beyond what they import, in the life of a set-up: for the
// looks of its windows, for COM, and for folders, which are chosen, looked at and made shortcuts in. Most
// versions of Windows have only some of them. Not among them is what asks for others when it is loaded.
constexpr const char* kAskedForByName[] = {
    "apphelp.dll",  "clbcatq.dll", "comres.dll",  "cryptbase.dll", "dwmapi.dll",  "linkinfo.dll",
    "mpr.dll",      "msimg32.dll", "ntmarta.dll", "ntshrui.dll",   "ole32.dll",   "propsys.dll",
    "setupapi.dll", "shell32.dll", "userenv.dll", "uxtheme.dll",   "version.dll",
};

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
    // Before Windows Vista there is no such function, and later ones do not ask it everywhere. A library that
    // is loaded is found under its bare name before any folder is searched.
    for (const char* name : kAskedForByName) LLoadSystemLibrary(name).Release();
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
