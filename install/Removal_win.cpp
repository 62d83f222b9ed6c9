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
#include "store/DataRemoval.h"
#include "store/RegistryUser.h"
#include "ui/LDialog.h"
#include "ui/LProgressDialog.h"

namespace {

constexpr char kRemovalError[] = "Corvane Was Not Removed";
constexpr char kNotInstalled[] = "This Corvane is not installed (any more). There is nothing to remove.";
constexpr char kOnlyAdministrator[] =
    "Corvane is installed for everyone who uses this computer. Only an administrator of this computer can "
    "remove it.\n\nNothing was changed.";
constexpr char kNoCopy[] =
    "Corvane cannot be removed now, since nothing can be written into the folder for temporary "
    "files.\n\nPlease "
    "see that the disk is not full, and try again.";
constexpr char kQuestion[] =
    "Corvane will be removed from this computer.\n\nYour recordings and settings stay, and the next "
    "installation "
    "finds them. They lie in\n%s";
constexpr char kConfirm[] =
    "All recordings, typists and settings in\n\n%s\n\nwill be deleted for good: %s with %s of recordings, of "
    "%s.\nNot sent yet: %d.\n\nDelete them?";
constexpr char kFilesStay[] =
    "\n\nSome files are in use by another program. They are deleted when Windows is started next.";
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
        SetWindowTextA(Item(IDC_REMOVE_TEXT), LFormat(kQuestion, m_dataFolder.c_str()).c_str());
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

std::string Counted(int32_t count, const char* what) {
    return LFormat(count == 1 ? "%d %s" : "%d %ss", count, what);
}

std::string Duration(int64_t ms) {
    constexpr int64_t kMinute = 60000;
    return ms < 60 * kMinute ? Counted(static_cast<int32_t>((ms + kMinute - 1) / kMinute), "minute")
                             : LFormat("%.1f hours", static_cast<double>(ms) / (60 * kMinute));
}

bool RemoveDialog::Confirms() {
    DataCount process(m_dataFolder, m_lengthMs);
    std::string error;
    const ProcessResult result = LProgressDialog::Run(process, Window(), kRemovalTitle, error);
    if (!error.empty()) Tell(Window(), error, kRemovalError);
    if (result != ProcessResult::Done || !IsOpen()) return false;
    const DataContents& count = process.Contents();
    const std::string text =
        LFormat(kConfirm, m_dataFolder.c_str(), Counted(count.dictations, "dictation").c_str(),
                Duration(count.audioMs).c_str(), Counted(count.users, "user").c_str(), count.notSent);
    return Tell(Window(), text, "Delete Recordings", MB_YESNO | MB_ICONEXCLAMATION | MB_DEFBUTTON2) == IDYES;
}

class RemoveProcess final : public LProcess {
public:
    RemoveProcess(const Installation& installation, bool deletesData)
        : m_installation(installation), m_deletesData(deletesData) {}
    ProcessResult Process(ProcessContext& context) override;
    // What the user is told of it.
    std::string Outcome() const;

private:
    std::vector<DeletedPath> RemoveFiles();
    ProcessResult RemoveData(ProcessContext& context);
    void RemoveFolders() const;

    const Installation& m_installation;
    bool m_deletesData;
    bool m_filesStay = false;
    bool m_isDataKept = true;
    int32_t m_dataKept = 0;
};

}  // namespace

// A failure does not end the removal: what stays is told.
ProcessResult RemoveProcess::RemoveData(ProcessContext& context) {
    context.SetStatus("Deleting the recordings...");
    DataRemoval removal(m_installation.dataFolder);
    const ProcessResult result = removal.Process(context);
    m_dataKept = removal.Kept();
    return result;
}

// Returns what could not be deleted: what another program holds, and the folder then.
std::vector<DeletedPath> RemoveProcess::RemoveFiles() {
    std::vector<DeletedPath> staying;
    for (const std::string& name : RemoveInstalledFiles(m_installation.folder))
        staying.push_back({LPath::Join(m_installation.folder.View(), name)});
    m_filesStay = !staying.empty();
    if (m_filesStay) staying.push_back({m_installation.folder, true});
    return staying;
}

// Each is removed only when it is empty.
void RemoveProcess::RemoveFolders() const {
    const LPath user = UserFolderPath(LPath::Join(m_installation.dataFolder.View(), ""), 0);
    for (const char* name : {"Current", "Sent"}) LFile::DeleteFolder(LPath::Join(user.View(), name));
    LFile::DeleteFolder(user.WithoutSeparator());
    for (const LPath& folder : {m_installation.dataFolder.WithoutSeparator(), m_installation.folder}) {
        LFile::DeleteFolder(folder);
        const LPath above = LPath(LFolderOf(folder.View())).WithoutSeparator();
        if (LEqualNoCase(LFileNameOf(above.View()), "Mervald")) LFile::DeleteFolder(above);
    }
}

ProcessResult RemoveProcess::Process(ProcessContext& context) {
    const ProcessResult waited = WaitForRunningCopy(m_installation.Program(), context);
    if (waited != ProcessResult::Done) return waited;
    context.SetStatus("Removing Corvane...");
    // First, since a cancel then leaves an installation that can be removed again.
    if (m_deletesData && RemoveData(context) == ProcessResult::Stopped) return ProcessResult::Stopped;
    RemoveShortcuts(m_installation);
    DeleteAtNextStart(RemoveFiles());
    RemoveFolders();
    m_isDataKept = !LFile::IsAbsent(m_installation.dataFolder.WithoutSeparator());
    if (!m_isDataKept) ForgetRegistryUser();
    RemoveFromRegistry(m_installation, m_isDataKept);
    return ProcessResult::Done;
}

std::string RemoveProcess::Outcome() const {
    std::string text = "Corvane was removed.";
    if (m_isDataKept && !m_deletesData)
        text +=
            LFormat("\n\nYour recordings and settings are still in\n%s", m_installation.dataFolder.c_str());
    if (m_dataKept > 0) text += LFormat(kDataStays, m_dataKept, m_installation.dataFolder.c_str());
    if (m_filesStay) text += kFilesStay;
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
    const bool isShared = other && LFile::Exists(other->Program()) &&
                          LEqualNoCase(other->dataFolder.View(), installation->dataFolder.View());
    RemoveDialog dialog(installation->dataFolder, isShared, lengthMs);
    if (dialog.RunModal(IDD_REMOVE, nullptr) != IDOK) return;
    if (AskRunningCopyToClose()) LSleep(kCloseWaitMs);
    RemoveProcess process(*installation, dialog.DeletesData());
    std::string error;
    if (LProgressDialog::Run(process, nullptr, kRemovalTitle, error) == ProcessResult::Done)
        Tell(nullptr, process.Outcome(), kRemovalTitle, MB_OK | MB_ICONINFORMATION);
}

void RunRemoval(int argumentCount, const char* const* arguments, LengthMs lengthMs) {
    const LPath program = RemovalCopy::Installed(argumentCount, arguments);
    if (!RemovalCopy::IsRunning()) {
        if (!RemovalCopy::Start()) Tell(nullptr, kNoCopy, kRemovalError);
        return;
    }
    OnlySetUp only;
    if (only.IsFirst()) Remove(program, lengthMs);
    RemovalCopy::DeleteItself();
}
