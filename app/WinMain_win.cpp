#include <windows.h>

#include <commctrl.h>
#include <cstdlib>

#include "app/AppState.h"
#include "app/StartUpPlan.h"
#include "app/window/MainDialog_win.h"
#include "audio/device/LDBDisplay_win.h"
#include "audio/wave/LWaveFile.h"
#include "base/LFile.h"
#include "base/LLibrary_win.h"
#include "base/LNamedMutex_win.h"
#include "base/LTrace.h"
#include "install/OnlySetUp_win.h"
#include "install/Removal_win.h"
#include "install/RunningCopy_win.h"
#include "install/SetUp_win.h"
#include "res/Ids.h"
#include "store/DataFolder_win.h"
#include "ui/LShell.h"

// The order of the start: decide between installer, remover, program and second instance (StartUpPlan), then
// as the program: data folder, user, main window, message loop. A mutex is held from the search for another
// instance's window until this one's window exists. The process runs in the high priority class: the
// recorder's thread must not starve while other programs work.

namespace {

constexpr char kMainTitle[] = "Corvane";
constexpr char kFolderTooLong[] =
    "The name of the data folder is too long: the files in it could not be opened.\n\nPlease move the folder "
    "to a place with a shorter name, or install Corvane again.";
constexpr char kBeingReplaced[] =
    "Corvane is just being installed or removed.\n\nPlease start it when that is done.";
constexpr DWORD kStartingWaitMs = 10000;

// Holds a mutex between looking for a window and having one: two quick double clicks must not start the
// program twice. An instance that waits longer than ten seconds goes on without it.
class StartingGate {
public:
    StartingGate() { m_mutex.Take(kStartingWaitMs); }
    void Open() { m_mutex.Release(); }

private:
    LNamedMutex m_mutex{"Corvane.Starting"};
};

uint32_t InstallMarkerOf(const LPath& executable) {
    LFile file(executable, LFile::Open::Read);
    return file.IsOpen() ? ReadInstallMarker(file) : 0;
}

// Shows the window of the first instance. Only a minimized one is restored: restoring a maximized one would
// take its size away.
void Activate(HWND window) {
    if (IsIconic(window)) ShowWindow(window, SW_RESTORE);
    SetForegroundWindow(GetLastActivePopup(window));  // an open box, which has disabled the window
}

void Run(StartingGate& gate) {
    if (ReplacingProgram::IsUnderWay()) {
        gate.Open();
        MessageBoxA(nullptr, kBeingReplaced, kMainTitle, MB_OK | MB_ICONINFORMATION);
        return;
    }
    AppState state;
    state.data = FindDataFolder();
    if (!state.data.HasRoom()) {
        gate.Open();
        MessageBoxA(nullptr, kFolderTooLong, kMainTitle, MB_OK | MB_ICONEXCLAMATION);
        return;
    }
    state.user = SelectUser(state.data, GetCurrentUser(state.data.settingsFile));
    state.showIntroduction = WantsIntroduction(__argc, __argv);

    MainDialog dialog(state);
    if (!LDBDisplayRegister(LInstance())) LTrace("WinMain unable to register LDBDisplay");
    InitCommonControls();
    dialog.SetStartTick(GetTickCount());
    dialog.OnCreated([&gate] { gate.Open(); });
    dialog.RunMessageLoop(IDD_MAIN);
    // A delivery that hangs in the network must not keep the process alive: its entry is still in the queue
    // and is sent after the next start.
    if (!dialog.SendThreadEnded()) ExitProcess(0);
}

}  // namespace

int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPSTR, int) {
    LIgnoreLibrariesOfCurrentFolder();
    LSetInstance(instance);
    SetErrorMode(SEM_FAILCRITICALERRORS);  // a card reader without a card is told by us
    // The recorder must not starve while other programs run.
    SetPriorityClass(GetCurrentProcess(), HIGH_PRIORITY_CLASS);
    StartingGate gate;
    const HWND running = FindRunningCopy();
    const LPath executable = LProgramPath();
    SetCurrentDirectoryA(LPath(LFolderOf(executable.View())).c_str());
    const uint32_t marker = InstallMarkerOf(executable);

    switch (DecideStartUp(LSplitPath(executable.View()).name, marker, WantsRemoval(__argc, __argv),
                          running != nullptr)) {
        case StartUpAction::RefuseCorruptInstaller:
            LKeepToSystemLibraries();
            gate.Open();
            MessageBoxA(nullptr, kCorruptPackage, kInstallError, MB_OK | MB_ICONEXCLAMATION);
            break;
        case StartUpAction::Install:
            LKeepToSystemLibraries();
            gate.Open();
            InitCommonControls();
            RunSetUp(executable, CloseWaitMs(marker));
            break;
        case StartUpAction::Remove:
            LKeepToSystemLibraries();
            gate.Open();
            InitCommonControls();
            RunRemoval(__argc, __argv, LWaveFile::LengthMs);
            break;
        case StartUpAction::ActivateFirst:
            Activate(running);
            break;
        case StartUpAction::Run:
            Run(gate);
            break;
    }
    return 0;
}
