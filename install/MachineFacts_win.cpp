#include "install/MachineFacts_win.h"

#include "base/LFile.h"
#include "install/InstallRegistry_win.h"
#include "install/ShellFolders_win.h"
#include "store/DataFolder_win.h"
#include "store/DataRemoval.h"

// Whether files can be made in a folder, or in the nearest one above it that is there.
static bool MayMakeFilesIn(const LPath& wanted) {
    LPath folder = wanted.WithoutSeparator();
    while (!LFile::IsFolder(folder)) {
        const LPath above = LPath(LFolderOf(folder.View())).WithoutSeparator();
        if (above.View().size() >= folder.View().size()) return false;
        folder = above;
    }
    const LPath trial = LPath::Join(folder.View(), "corvane.new~");
    const bool isMade = LFile(trial, LFile::Open::CreateNew).IsOpen();
    return isMade && LFile::Delete(trial, kMoveWaitMs);
}

// The folder of a copy that is registered and there.
static LPath ProgramOf(InstallScope scope) {
    const std::optional<Installation> found = RegisteredInstallation(scope);
    return found && LFile::Exists(found->Program()) ? found->folder : LPath();
}

static MachineFacts::Data DataOf(HKEY hive) {
    MachineFacts::Data data;
    data.folder = LPath(LReadRegistryText(hive, kFoldersKey, "DataFiles")).WithoutSeparator();
    if (LFile::IsAbsent(data.folder)) return {};
    data.isKept = !data.folder.Empty() && HoldsDictations(data.folder) != Holding::No;
    return data;
}

MachineFacts ReadMachineFacts() {
    MachineFacts facts;
    facts.tellsUsersApart = PlatformTellsUsersApart();
    facts.everyonesProgram = ProgramOf(InstallScope::Everyone);
    facts.ownProgram = ProgramOf(InstallScope::ThisUser);
    facts.defaultFolder = DefaultDataFolder();
    const LPath& programs = facts.everyonesProgram.Empty() ? facts.defaultFolder : facts.everyonesProgram;
    facts.mayInstallForEveryone = MayChangeRegistry(InstallScope::Everyone) && MayMakeFilesIn(programs);
    const LPath own = ShellFolders::Read().localData;
    if (facts.tellsUsersApart && !own.Empty()) facts.ownFolder = LPath::Join(own.View(), "Mervald\\Corvane");
    facts.everyonesData = DataOf(HKEY_LOCAL_MACHINE);
    facts.ownData = DataOf(HKEY_CURRENT_USER);
    return facts;
}
