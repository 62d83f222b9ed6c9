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
    "You do not have the right to install Corvane on this computer.\n\nPlease ask an administrator of this "
    "computer to install it for everyone.";
constexpr char kNotThisCopy[] =
    "The Corvane on this computer is installed for everyone, and only an administrator of this computer can "
    "replace it.\n\nNothing was changed.";
constexpr char kNoShortcut[] =
    "Corvane is installed, but its sign could not be put on the desktop or into the start menu.\n\nYou can "
    "start "
    "it from the folder\n\n%s";

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

bool Install(const SetupPackage& package, const Installation& installation) {
    InstallProcess process(package, installation);
    std::string error;
    const ProcessResult result = LProgressDialog::Run(process, nullptr, kSetUpTitle, error);
    if (!error.empty()) Tell(error, kInstallError);
    if (process.IsShortcutMissing()) Tell(LFormat(kNoShortcut, installation.folder.c_str()), kSetUpTitle);
    return result == ProcessResult::Done;
}

// The plan, as the user has settled it; false when nothing is to be installed.
bool Settle(InstallPlan& plan, const SetupPackage& package) {
    const bool asks = package.Marker() == kMarkerSetup;
    if (!plan.IsPossible()) {
        Tell(kNotForThisUser, kInstallError);
        return false;
    }
    if (!asks && plan.LeavesEveryonesCopy()) {
        Tell(kNotThisCopy, kInstallError);
        return false;
    }
    return !asks || AskForInstallation(plan, InstallFiles::NeededKb(package));
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
    if (!Settle(plan, *package)) return;

    const bool wasRunning = AskRunningCopyToClose();
    if (wasRunning) LSleep(closeWaitMs);
    const Installation installation = plan.Chosen();
    const bool isInstalled = Install(*package, installation);
    const bool isFirstStart = isInstalled && package->Marker() == kMarkerSetup;
    if (isFirstStart)
        LStartProgram(installation.Program(), "/install");
    else if (wasRunning)
        LStartProgram(installation.Program(), "");
}
