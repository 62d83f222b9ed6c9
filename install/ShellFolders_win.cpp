#include "install/ShellFolders_win.h"

#include "base/LRegistry_win.h"

ShellFolders ShellFolders::Read() {
    const auto folder = [](HKEY hive, const char* name) {
        return LPath(LReadRegistryText(
            hive, "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders", name));
    };
    ShellFolders folders = {
        .desktop = folder(HKEY_CURRENT_USER, "Desktop"),
        .commonDesktop = folder(HKEY_LOCAL_MACHINE, "Common Desktop"),
        .programs = folder(HKEY_CURRENT_USER, "Programs"),
        .commonPrograms = folder(HKEY_LOCAL_MACHINE, "Common Programs"),
        .localData = folder(HKEY_CURRENT_USER, "Local AppData"),
    };
    if (folders.localData.Empty()) folders.localData = folder(HKEY_CURRENT_USER, "AppData");
    return folders;
}
