#include "install/InstallProcess_win.h"

#include "base/LText.h"
#include "install/DelayedDeletion_win.h"
#include "install/InstallFiles.h"
#include "install/InstallRegistry_win.h"
#include "install/InstallShortcuts_win.h"
#include "install/MachineFacts_win.h"
#include "install/OnlySetUp_win.h"
#include "install/RunningCopy_win.h"
#include "store/DataFolder_win.h"

namespace {

constexpr char kNoFolder[] =
    "The folder\n\n%s\n\ncannot be made, or nothing can be written into it. Corvane was not "
    "installed.\n\nPlease choose another folder, or ask somebody who may write there.";
constexpr char kNoRoom[] =
    "There is not enough room on the drive of\n\n%s\n\nCorvane was not installed, and nothing was "
    "changed.";
constexpr char kRestartFirst[] =
    "When Windows is started next it deletes files of an earlier Corvane in\n\n%s\n\nPlease restart "
    "Windows now, and install Corvane then. Nothing was changed.";
constexpr char kNotWritten[] =
    "The files of Corvane could not be written into\n\n%s\n\nThe disk may be full or write-protected, or "
    "another program may hold one of them. Nothing was changed; please try again.";
constexpr char kNotRegistered[] =
    "Windows did not let Corvane enter itself into the registry. Nothing was changed.\n\nAn "
    "administrator of this computer can install Corvane.";

// Folders that are removed again unless the installation succeeds.
class NewFolders {
public:
    ~NewFolders() {
        for (size_t i = m_made.size(); i > 0; --i) LFile::DeleteFolder(m_made[i - 1]);
    }
    bool Make(const LPath& folder, FolderAccess access) {
        for (const LPath& made : MakeFolders(folder, access)) m_made.push_back(made);
        return LFile::IsFolder(folder.WithoutSeparator());
    }
    void Keep() { m_made.clear(); }

private:
    std::vector<LPath> m_made;
};

std::string TextOf(const char* text, const LPath& folder) {
    return LFormat(text, LShownPath(folder.View()).c_str());
}

ProcessResult Fail(ProcessContext& context, const char* text, const LPath& folder) {
    context.SetError(TextOf(text, folder));
    return ProcessResult::Failed;
}

}  // namespace

// Puts the files in their places; until the end of Process they can be put back.
static ProcessResult SwapIn(InstallFiles& files, const LPath& program, ProcessContext& context) {
    for (;;) {
        context.SetStatus("Copying files...");
        if (const ProcessResult r = files.WriteBeside(context); r != ProcessResult::Done) return r;
        if (const ProcessResult r = WaitForRunningCopy(program, context); r != ProcessResult::Done) return r;
        const InstallFiles::Outcome outcome = files.SwapIn();
        if (outcome == InstallFiles::Outcome::Done) return ProcessResult::Done;
        if (outcome == InstallFiles::Outcome::Failed) return ProcessResult::Failed;
    }
}

std::string InstallProcess::WhyNot() const {
    const LPath& folder = m_installation.folder;
    if (!MayMakeFilesIn(folder)) return TextOf(kNoFolder, folder);
    return FreeKbFor(folder) < InstallFiles::NeededKb(m_package) ? TextOf(kNoRoom, folder) : "";
}

ProcessResult InstallProcess::Process(ProcessContext& context) {
    const LPath& folder = m_installation.folder;
    m_installation.sizeKb = m_package.TotalBytes() / 1024;
    const bool isEveryones = m_installation.scope == InstallScope::Everyone;
    const FolderAccess access = isEveryones ? FolderAccess::Everyone : FolderAccess::Inherited;
    const ReplacingProgram replacing;
    NewFolders folders;
    // Only where dictations lie may everyone write: nobody is to replace a program for others. An empty
    // folder is made anew for that: whoever made it, as in the shell's dialog, gave it no such access.
    const bool isForAll = isEveryones && !m_installation.isDataKept;
    if (isForAll) LFile::DeleteFolder(folder);
    if (!folders.Make(folder, isForAll ? access : FolderAccess::Inherited))
        return Fail(context, kNoFolder, folder);
    const LPath user = UserFolderPath(LPath::Join(m_installation.dataFolder.View(), ""), 0);
    // Where those of before are away, each start makes them (SelectUser).
    for (const char* name : {"Current", "Sent"})
        if (!folders.Make(LPath::Join(user.View(), name), access) && !m_installation.isDataKept)
            return Fail(context, kNoFolder, m_installation.dataFolder);

    if (!WithdrawDeletions(folder)) return Fail(context, kRestartFirst, folder);
    InstallFiles files(m_package, folder);
    files.Recover();
    if (!files.HasRoom()) return Fail(context, kNoRoom, folder);
    const ProcessResult result = SwapIn(files, m_installation.Program(), context);
    if (result == ProcessResult::Failed) return Fail(context, kNotWritten, folder);
    if (result == ProcessResult::Stopped) return result;
    InstallRegistry registry(m_installation);
    if (!registry.Write()) {
        registry.TakeBack();
        files.PutBack();
        return Fail(context, kNotRegistered, folder);
    }
    files.Finish();
    folders.Keep();
    m_isShortcutMissing = !MakeShortcuts(m_installation);
    return ProcessResult::Done;
}
