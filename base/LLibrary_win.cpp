#include "base/LLibrary_win.h"

#include "base/LFile.h"

namespace {

LPath SystemFolder() {
    char path[kPathSize] = {};
    const UINT length = GetSystemDirectoryA(path, sizeof path);
    return length < sizeof path ? LPath({path, length}) : LPath();
}

LPath WindowsFolder() {
    char path[kPathSize] = {};
    const UINT length = GetWindowsDirectoryA(path, sizeof path);
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

// What the library needs in turn is looked for beside it, not beside the program.
LLibrary LLoadAddOn(const char* fileName) {
    const UINT mode = SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX);
    LLibrary library;
    for (const LPath& folder : {ProgramFolder(), SystemFolder()}) {
        const LPath path = FileIn(folder, fileName);
        if (!library && !path.Empty())
            library.Reset(LoadLibraryExA(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH));
    }
    SetErrorMode(mode);
    return library;
}

LPath LPlatformProgram(const char* fileName) {
    for (const LPath& folder : {SystemFolder(), WindowsFolder()})
        if (const LPath path = FileIn(folder, fileName); !path.Empty() && LFile::Exists(path)) return path;
    return {};
}
