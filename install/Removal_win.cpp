#include "install/Removal_win.h"

#include "base/LFile.h"
#include "base/LText.h"
#include "base/LTime.h"
#include "install/DelayedDeletion_win.h"
#include "install/InstallFiles.h"
#include "install/InstallRegistry_win.h"
#include "install/InstallShortcuts_win.h"
#include "install/OnlySetUp_win.h"
#include "install/RemovalCopy_win.h"
#include "install/RunningCopy_win.h"
#include "res/Ids.h"
#include "store/DataFolder_win.h"
#include "store/DataRemoval.h"
#include "store/RegistryUser.h"
#include "ui/LDialog.h"
#include "ui/LProgressDialog.h"
#include "ui/LShell.h"

namespace {

constexpr char kConfirmTitle[] = "Delete Recordings";
constexpr char kRemovalError[] = "Corvane Was Not Removed";
constexpr char kNotInstalled[] = "This Corvane is not installed (any more). There is nothing to remove.";
constexpr char kOnlyAdministrator[] =
    "Corvane is installed for everyone who uses this computer. Only an administrator of this computer "
    "can remove it.\n\nNothing was changed.";
constexpr char kNoCopy[] =
    "Corvane cannot be removed now, since nothing can be written into the folder for temporary "
    "files.\n\nPlease see that the disk is not full, and try again.";
constexpr char kQuestion[] =
    "Corvane will be removed from this computer. If it is open it is closed, and a recording ended "
    "properly.\n\nYour recordings and settings stay, and the next installation finds them. They lie "
    "in\n%s";
constexpr char kConfirm[] =
    "All recordings, typists and settings in\n\n%s\n\nwill be deleted for good: %s with %s of "
    "recordings, of %s.\nNot sent yet: %d.\n\nDelete them?";
constexpr char kDeletedLater[] =
    "\n\nSome files are in use by another program. They are deleted when Windows is started next.";
constexpr char kFilesStay[] =
    "\n\nSome files could not be deleted. Please delete them yourself; they are in\n%s";
constexpr char kEntryStays[] = "\n\nIts entry in the list of programs could not be removed.";
constexpr char kCancelled[] = "Corvane was not removed.";
constexpr char kPartlyDeleted[] = "\n\nSome recordings had been deleted already.";
constexpr char kSharedData[] = "\n\nOthers on this computer may use them, so they cannot be deleted with it.";
constexpr char kDataStays[] =
    "\n\n%d files or folders of recordings or settings could not be deleted. They are in\n%s";

constexpr uint32_t kCloseWaitMs = 2000;

int Tell(HWND owner, std::string_view text, const char* caption, UINT flags = MB_OK | MB_ICONEXCLAMATION) {
    return LMessageBox(owner, text, caption, flags);
}

using LengthMs = int32_t (*)(const LPath& audio);

class RemoveDialog final : public LDialog {
public:
    // isShared: another installation works with the same recordings.
    RemoveDialog(const LPath& dataFolder, bool isShared, LengthMs lengthMs)
        : m_dataFolder(dataFolder), m_isShared(isShared), m_lengthMs(lengthMs) {}
    bool DeletesData() const { return m_deletesData; }

private:
    bool InitDialog() override {
        SetWindowTextA(Window(), kRemovalTitle);
        std::string question = LFormat(kQuestion, LShownPath(m_dataFolder.View()).c_str());
        if (m_isShared) question += kSharedData;
        SetWindowTextA(Item(IDC_REMOVE_TEXT), question.c_str());
        EnableWindow(Item(IDC_REMOVE_DATA), !m_isShared);
        LShowAsProgram(Window());
        SetFocus(Item(IDOK));
        return false;
    }

    bool HandleMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) override {
        if (message != WM_COMMAND || LOWORD(wParam) != IDOK)
            return LDialog::HandleMessage(message, wParam, lParam, result);
        m_deletesData = IsDlgButtonChecked(Window(), IDC_REMOVE_DATA) == BST_CHECKED;
        if (!m_deletesData || Confirms()) EndModal(IDOK);
        return true;
    }

    bool Confirms();

    const LPath& m_dataFolder;
    bool m_isShared;
    LengthMs m_lengthMs;
    bool m_deletesData = false;
};

// The counting, with a text: the bar alone would look like the removal.
class CountProcess final : public LProcess {
public:
    explicit CountProcess(DataCount& count) : m_count(count) {}
    ProcessResult Process(ProcessContext& context) override {
        context.SetStatus("Counting the recordings. Nothing is deleted yet.");
        return m_count.Process(context);
    }

private:
    DataCount& m_count;
};

std::string Counted(int32_t count, const char* what) {
    return LFormat(count == 1 ? "%d %s" : "%d %ss", count, what);
}

std::string Duration(int64_t ms) {
    constexpr int64_t kMinute = 60000;
    return ms < 60 * kMinute ? Counted(static_cast<int32_t>((ms + kMinute - 1) / kMinute), "minute")
                             : LFormat("%.1f hours", static_cast<double>(ms) / (60 * kMinute));
}

bool RemoveDialog::Confirms() {
    DataCount counted(m_dataFolder, m_lengthMs);
    CountProcess process(counted);
    std::string error;
    const ProcessResult result = LProgressDialog::Run(process, Window(), "Counting Recordings", error);
    if (!error.empty()) Tell(Window(), error, kRemovalError);
    if (result != ProcessResult::Done || !IsOpen()) return false;
    const DataContents& count = counted.Contents();
    const std::string text = LFormat(
        kConfirm, LShownPath(m_dataFolder.View()).c_str(), Counted(count.dictations, "dictation").c_str(),
        Duration(count.audioMs).c_str(), Counted(count.users, "user").c_str(), count.notSent);
    return Tell(Window(), text, kConfirmTitle, MB_YESNO | MB_ICONEXCLAMATION | MB_DEFBUTTON2) == IDYES;
}

class RemoveProcess final : public LProcess {
public:
    // data: where the recordings lie that the program works with.
    RemoveProcess(const Installation& installation, const LPath& data, bool isShared, bool deletesData)
        : m_installation(installation), m_data(data), m_isShared(isShared), m_deletesData(deletesData) {}
    ProcessResult Process(ProcessContext& context) override;
    // What the user is told of it.
    std::string Outcome(ProcessResult result) const;

private:
    ProcessResult RemoveData(ProcessContext& context);
    ProcessResult RemoveFiles(ProcessContext& context);
    void NoteStaying(const std::vector<std::string>& names);
    void RemoveFolders() const;

    const Installation& m_installation;
    LPath m_data;
    bool m_isShared;
    bool m_deletesData;
    bool m_hasDeletedData = false;
    bool m_isDeletedLater = false;
    bool m_filesStay = false;
    bool m_entryStays = false;
    int32_t m_dataKept = 0;
};

}  // namespace

// A failure does not end the removal: what stays is told.
ProcessResult RemoveProcess::RemoveData(ProcessContext& context) {
    context.SetStatus("Deleting the recordings...");
    DataRemoval removal(m_data);
    m_hasDeletedData = true;
    const ProcessResult result = removal.Process(context);
    m_dataKept = removal.Kept();
    return result;
}

// What another program holds is deleted at the next start, but never the program: whoever installs Corvane
// before that would lose it.
void RemoveProcess::NoteStaying(const std::vector<std::string>& names) {
    std::vector<DeletedPath> later;
    later.reserve(names.size() + 1);
    for (const std::string& name : names) later.push_back({LPath::Join(m_installation.folder.View(), name)});
    later.push_back({m_installation.folder, true});
    const bool isProgramStaying = LFile::Exists(m_installation.Program());
    m_isDeletedLater = !names.empty() && !isProgramStaying && DeleteAtNextStart(later);
    m_filesStay = !names.empty() && !m_isDeletedLater;
}

// Somebody may have started the program since it was waited for.
ProcessResult RemoveProcess::RemoveFiles(ProcessContext& context) {
    for (;;) {
        const ProcessResult waited = WaitForRunningCopy(m_installation.Program(), context);
        if (waited != ProcessResult::Done) return waited;
        const std::vector<std::string> staying = RemoveInstalledFiles(m_installation.folder);
        if (IsProgramHeld(m_installation.Program())) continue;
        NoteStaying(staying);
        return ProcessResult::Done;
    }
}

// Each is removed only when it is empty. Where there are recordings, their folders are those of others, too.
void RemoveProcess::RemoveFolders() const {
    const LPath data = m_installation.dataFolder.WithoutSeparator();
    if (!m_isShared && HoldsDictations(data) == Holding::No) {
        const LPath user = UserFolderPath(LPath::Join(data.View(), ""), 0);
        for (const char* name : {"Current", "Sent"}) LFile::DeleteFolder(LPath::Join(user.View(), name));
        LFile::DeleteFolder(user.WithoutSeparator());
        LFile::DeleteFolder(data);
    }
    LFile::DeleteFolder(m_installation.folder);
    for (const LPath& folder : {data, m_installation.folder}) {
        const LPath above = LFolderAbove(folder);
        if (LEqualNoCase(LFileNameOf(above.View()), "Mervald")) LFile::DeleteFolder(above);
    }
}

ProcessResult RemoveProcess::Process(ProcessContext& context) {
    const ReplacingProgram replacing;
    const ProcessResult waited = WaitForRunningCopy(m_installation.Program(), context);
    if (waited != ProcessResult::Done) return waited;
    // First, since a cancel then leaves an installation that can be removed again.
    if (m_deletesData && RemoveData(context) == ProcessResult::Stopped) return ProcessResult::Stopped;
    context.SetStatus("Removing Corvane...");
    RemoveShortcuts(m_installation);
    RemoveStartEntries(m_installation);
    if (RemoveFiles(context) == ProcessResult::Stopped) return ProcessResult::Stopped;
    m_entryStays = !RemoveFromRegistry(m_installation, true);
    RemoveFolders();
    const LPath data = m_installation.dataFolder.WithoutSeparator();
    if (!m_isShared && (LFile::IsGone(data) || HoldsDictations(data) == Holding::No)) {
        ForgetRegistryUser();
        RemoveFromRegistry(m_installation, false);
    }
    return ProcessResult::Done;
}

std::string RemoveProcess::Outcome(ProcessResult result) const {
    if (result != ProcessResult::Done)
        return std::string(kCancelled) + (m_hasDeletedData ? kPartlyDeleted : "");
    const std::string data = LShownPath(m_data.View());
    std::string text = "Corvane was removed.";
    if (!m_deletesData && HoldsDictations(m_data) != Holding::No)
        text += LFormat("\n\nYour recordings and settings are still in\n%s", data.c_str());
    if (m_dataKept > 0) text += LFormat(kDataStays, m_dataKept, data.c_str());
    if (m_isDeletedLater) text += kDeletedLater;
    if (m_filesStay) text += LFormat(kFilesStay, LShownPath(m_installation.folder.View()).c_str());
    if (m_entryStays) text += kEntryStays;
    return text;
}

static void Remove(const LPath& program, LengthMs lengthMs) {
    std::optional<Installation> installation = RegisteredInstallation(InstallScope::Everyone);
    std::optional<Installation> other = RegisteredInstallation(InstallScope::ThisUser);
    const auto isOf = [](const std::optional<Installation>& found, const LPath& wanted) {
        return found && LEqualNoCase(found->Program().View(), wanted.View());
    };
    if (!isOf(installation, program)) std::swap(installation, other);
    if (!isOf(installation, program)) installation.reset();
    if (!installation) {
        Tell(nullptr, kNotInstalled, kRemovalError);
        return;
    }
    if (!MayChangeRegistry(installation->scope)) {
        Tell(nullptr, kOnlyAdministrator, kRemovalError);
        return;
    }
    // The program reads everyone's folder before this user's; removing his copy must not touch that.
    const LPath everyones(LReadRegistryText(HKEY_LOCAL_MACHINE, kFoldersKey, "DataFiles"));
    const bool isEveryones = installation->scope == InstallScope::ThisUser && !everyones.Empty() &&
                             !LFile::IsGone(everyones.WithoutSeparator());
    const LPath data = isEveryones ? everyones : installation->dataFolder;
    const bool isShared = isEveryones || (other && HoldsProgram(other->folder) &&
                                          LEqualNoCase(other->dataFolder.View(), data.View()));
    RemoveDialog dialog(data, isShared, lengthMs);
    if (dialog.RunModal(IDD_REMOVE, nullptr) != IDOK) return;
    const bool isClosed = AskRunningCopyToClose();
    if (isClosed) LSleep(kCloseWaitMs);
    RemoveProcess process(*installation, data, isShared, dialog.DeletesData());
    std::string error;
    const ProcessResult result = LProgressDialog::Run(process, nullptr, kRemovalTitle, error);
    Tell(nullptr, process.Outcome(result), kRemovalTitle, MB_OK | MB_ICONINFORMATION);
    if (result != ProcessResult::Done && isClosed) LStartProgram(installation->Program(), "");
}

void RunRemoval(int argumentCount, const char* const* arguments, LengthMs lengthMs) {
    const LPath program = RemovalCopy::Installed(argumentCount, arguments);
    if (!RemovalCopy::IsRunning()) {
        if (!RemovalCopy::Start()) Tell(nullptr, kNoCopy, kRemovalError);
        return;
    }
    RemovalCopy::DeleteItself();  // at the next start, however this run ends
    OnlySetUp only;
    if (only.IsFirst()) Remove(program, lengthMs);
}
