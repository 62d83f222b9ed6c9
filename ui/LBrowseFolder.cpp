#include "ui/LBrowseFolder.h"

#include <shlobj.h>

LPath LBrowseFolder(HWND owner, const char* title) {
    char name[MAX_PATH] = {};
    BROWSEINFOA wanted = {};
    wanted.hwndOwner = owner;
    wanted.pszDisplayName = name;
    wanted.lpszTitle = title;
    wanted.ulFlags = BIF_RETURNONLYFSDIRS;
    LPITEMIDLIST const chosen = SHBrowseForFolderA(&wanted);
    if (chosen == nullptr) return {};
    char path[MAX_PATH] = {};
    const bool isFolder = SHGetPathFromIDListA(chosen, path) != FALSE;
    IMalloc* allocator = nullptr;
    if (SUCCEEDED(SHGetMalloc(&allocator))) {
        allocator->Free(chosen);
        allocator->Release();
    }
    return isFolder ? LPath(path) : LPath();
}
