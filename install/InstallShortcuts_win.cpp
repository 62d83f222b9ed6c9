#include "install/InstallShortcuts_win.h"

#include "base/LFile.h"
#include "base/LText.h"
#include "base/LTrace.h"
#include "install/ShellFolders_win.h"
#include "install/ShellLink_win.h"

// Where shortcuts may lie, the place for everyone first: platforms without one, and a user without the right
// to write there, have them in the user's.
static std::vector<LPath> Places(const InstalledShortcut& shortcut, InstallScope scope) {
    const ShellFolders folders = ShellFolders::Read();
    const bool isDesktop = shortcut.place == ShortcutPlace::Desktop;
    std::vector<LPath> places;
    if (scope == InstallScope::Everyone)
        places.push_back(isDesktop ? folders.commonDesktop : folders.commonPrograms);
    places.push_back(isDesktop ? folders.desktop : folders.programs);
    std::erase_if(places, [](const LPath& place) { return place.Empty(); });
    for (LPath& place : places) place = LPath::Join(place.View(), shortcut.name);
    return places;
}

static bool MakeShortcut(const InstalledShortcut& shortcut, const Installation& installation) {
    ShellLink link;
    link.target = LPath::Join(installation.folder.View(), shortcut.file);
    link.workingFolder = installation.folder;
    link.icon = installation.Program();
    link.description = shortcut.description;
    for (const LPath& place : Places(shortcut, installation.scope))
        if (link.Write(place)) return true;
    LTrace("InstallShortcuts::MakeShortcut unable to make", shortcut.name);
    return false;
}

bool MakeShortcuts(const Installation& installation) {
    bool isDone = true;
    for (const InstalledShortcut& shortcut : InstalledShortcuts())
        isDone = MakeShortcut(shortcut, installation) && isDone;
    return isDone;
}

void RemoveShortcuts(const Installation& installation) {
    for (const InstalledShortcut& shortcut : InstalledShortcuts()) {
        const LPath target = LPath::Join(installation.folder.View(), shortcut.file);
        for (const LPath& place : Places(shortcut, installation.scope))
            if (LEqualNoCase(ShellLink::TargetOf(place).View(), target.View()))
                LFile::Delete(place, kMoveWaitMs);
    }
}
