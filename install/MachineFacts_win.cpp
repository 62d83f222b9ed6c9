#include "install/MachineFacts_win.h"

#include "base/LFile.h"
#include "base/LLibrary_win.h"
#include "install/InstallFiles.h"
#include "install/InstallRegistry_win.h"
#include "install/ShellFolders_win.h"
#include "store/DataFolder_win.h"
#include "store/DataRemoval.h"

// The folder itself or the nearest one above it that is there; empty where not even its drive is.
static LPath NearestFolder(const LPath& wanted) {
    LPath folder = wanted.WithoutSeparator();
    while (!LFile::IsFolder(folder)) {
        const LPath above = LPath(LFolderOf(folder.View())).WithoutSeparator();
        if (above.View().size() >= folder.View().size()) return {};
        folder = above;
    }
    return folder;
}

bool MayMakeFilesIn(const LPath& folder) {
    const LPath nearest = NearestFolder(folder);
    const LPath trial = LPath::Join(nearest.View(), "corvane.new~");
    const bool isMade = !nearest.Empty() && LFile(trial, LFile::Open::CreateNew).IsOpen();
    return isMade && LFile::Delete(trial, kMoveWaitMs);
}

uint64_t FreeKbFor(const LPath& folder) {
    const LPath nearest = NearestFolder(folder);
    return nearest.Empty() ? UINT64_MAX : LFile::FreeSpaceKb(nearest);
}

// The folder of a copy that is registered and there.
static LPath ProgramOf(InstallScope scope) {
    const std::optional<Installation> found = RegisteredInstallation(scope);
    return found && HoldsProgram(found->folder) ? found->folder : LPath();
}

// Where the drive of the folder for programs is missing, beside that of Windows.
static LPath DefaultFolder() {
    const LPath folder = DefaultDataFolder();
    const bool isThere = LFile::IsFolder(LRootOf(folder.View()));
    return isThere ? folder : LPath::Join(LRootOf(LWindowsFolder().View()).View(), "Corvane");
}

static LPath DataFilesOf(HKEY hive) {
    return LPath(LReadRegistryText(hive, kFoldersKey, "DataFiles")).WithoutSeparator();
}

static MachineFacts::Data DataIn(const LPath& folder) {
    if (folder.Empty() || LFile::IsGone(folder)) return {};
    return {folder, HoldsDictations(folder) != Holding::No};
}

MachineFacts ReadMachineFacts() {
    MachineFacts facts;
    facts.tellsUsersApart = PlatformTellsUsersApart();
    facts.everyonesProgram = ProgramOf(InstallScope::Everyone);
    facts.ownProgram = ProgramOf(InstallScope::ThisUser);
    facts.defaultFolder = DefaultFolder();
    const LPath& programs = facts.everyonesProgram.Empty() ? facts.defaultFolder : facts.everyonesProgram;
    facts.mayInstallForEveryone =
        MayChangeRegistry(InstallScope::Everyone) && (!facts.tellsUsersApart || MayMakeFilesIn(programs));
    const LPath local = ShellFolders::Read().localData;
    if (facts.tellsUsersApart && !local.Empty())
        facts.ownFolder = LPath::Join(local.View(), "Mervald\\Corvane");
    const LPath everyones = DataFilesOf(HKEY_LOCAL_MACHINE);
    const LPath own = DataFilesOf(HKEY_CURRENT_USER);
    facts.everyonesData = DataIn(everyones);
    facts.ownData = DataIn(own);
    // A program that nobody has installed keeps its dictations in the default folder.
    const MachineFacts::Data unregistered = DataIn(DefaultDataFolder());
    if (everyones.Empty() && own.Empty() && unregistered.isKept)
        facts.everyonesData = facts.ownData = unregistered;
    return facts;
}
