#include "install/SetUp_win.h"

#include "base/LFile.h"
#include "base/LText.h"
#include "base/LTime.h"
#include "install/InstallDialog_win.h"
#include "install/InstallFiles.h"
#include "install/InstallProcess_win.h"
#include "install/MachineFacts_win.h"
#include "install/OnlySetUp_win.h"
#include "install/RunningCopy_win.h"
#include "ui/LProgressDialog.h"
#include "ui/LShell.h"
#include "ui/LWin.h"

namespace {

constexpr char kNotForThisUser[] =
    "You do not have the right to install Corvane on this computer.\n\nPlease ask an administrator of "
    "this computer to install it for everyone.";
constexpr char kNotThisCopy[] =
    "The Corvane on this computer is installed for everyone, and only an administrator of this computer "
    "can replace it.\n\nNothing was changed.";
constexpr char kCancelled[] = "Corvane was not installed. Nothing was changed.";
constexpr char kNoShortcut[] =
    "Corvane is installed, but its sign could not be put on the desktop or into the start menu.\n\nYou "
    "can start it from the folder\n\n%s";

class CheckProcess final : public LProcess {
public:
    explicit CheckProcess(const SetupPackage& package) : m_package(package) {}
    ProcessResult Process(ProcessContext& context) override {
        context.SetStatus("Checking the installation file...");
        return m_package.Check(context);
    }

private:
    const SetupPackage& m_package;
};

void Tell(std::string_view text, const char* caption) {
    LMessageBox(nullptr, text, caption, MB_OK | MB_ICONEXCLAMATION);
}

bool IsWhole(const SetupPackage& package, ProcessResult& result) {
    CheckProcess check(package);
    std::string error;
    result = LProgressDialog::Run(check, nullptr, kSetUpTitle, error);
    return result == ProcessResult::Done;
}

ProcessResult Run(InstallProcess& process, const Installation& installation) {
    std::string error;
    const ProcessResult result = LProgressDialog::Run(process, nullptr, kSetUpTitle, error);
    if (!error.empty()) Tell(error, kInstallError);
    if (result == ProcessResult::Stopped) Tell(kCancelled, kSetUpTitle);
    if (process.IsShortcutMissing())
        Tell(LFormat(kNoShortcut, LShownPath(installation.folder.View()).c_str()), kSetUpTitle);
    return result;
}

// A copy that runs is closed for it, and started again unless the new one is installed.
ProcessResult Install(const SetupPackage& package, const Installation& installation, uint32_t closeWaitMs) {
    InstallProcess process(package, installation);
    if (const std::string reason = process.WhyNot(); !reason.empty()) {
        Tell(reason, kInstallError);
        return ProcessResult::Failed;
    }
    const LPath running = RunningCopyPath();
    const bool isClosed = AskRunningCopyToClose();
    if (isClosed) LSleep(closeWaitMs);
    const ProcessResult result = Run(process, installation);
    const bool isInstalled = result == ProcessResult::Done;
    if (isInstalled && package.Marker() == kMarkerSetup)
        LStartProgram(installation.Program(), "/install");
    else if (isClosed)
        LStartProgram(isInstalled || running.Empty() ? installation.Program() : running, "");
    return result;
}

// The plan, as the user has settled it; false when nothing is to be installed.
bool Settle(InstallPlan& plan, const SetupPackage& package) {
    const bool asks = package.Marker() == kMarkerSetup;
    if (!plan.IsPossible()) {
        Tell(kNotForThisUser, kInstallError);
        return false;
    }
    if (!asks && plan.LeavesEveryonesCopy() && !plan.IsUpdate()) {
        Tell(kNotThisCopy, kInstallError);
        return false;
    }
    return !asks || AskForInstallation(plan, package);
}

}  // namespace

void RunSetUp(const LPath& executable, uint32_t closeWaitMs) {
    OnlySetUp only;
    if (!only.IsFirst()) return;
    LFile file(executable, LFile::Open::Read);
    const std::optional<SetupPackage> package = SetupPackage::Open(file);
    ProcessResult checked = ProcessResult::Failed;
    if (!package || !IsWhole(*package, checked)) {
        if (checked != ProcessResult::Stopped) Tell(kCorruptPackage, kInstallError);
        return;
    }
    InstallPlan plan(ReadMachineFacts());
    // Whoever was asked may choose another folder.
    while (Settle(plan, *package))
        if (Install(*package, plan.Chosen(), closeWaitMs) != ProcessResult::Failed ||
            package->Marker() != kMarkerSetup)
            return;
}
