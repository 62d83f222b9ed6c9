#include <windows.h>

#include <commctrl.h>
#include <cstdlib>

#include "app/AppState.h"
#include "app/StartUpPlan.h"
#include "app/window/MainDialog_win.h"
#include "audio/device/LDBDisplay_win.h"
#include "base/LFile.h"
#include "base/LLibrary_win.h"
#include "base/LRegistry_win.h"
#include "base/LTrace.h"
#include "install/Installer_win.h"
#include "install/ShellFolders_win.h"
#include "res/Ids.h"
#include "store/DataFolder_win.h"
#include "ui/LProgressDialog.h"
#include "ui/LShell.h"

// The order of the start: decide between installer, program and second instance (StartUpPlan), then as the
// program: data folder, user, main window, message loop. A mutex is held from the search for another
// instance's window until this one's window exists.
// The process runs in the high priority class: the recorder's thread must not starve while other programs
// work.

namespace {

constexpr char kMainTitle[] = "Corvane";
constexpr char kDialogClass[] = "#32770";
constexpr char kCorruptInstaller[] =
    "Installation file corrupt.\n\nA checksum error was detected in your install file, please redownload "
    "file and install again.";
constexpr char kFolderTooLong[] =
    "The name of the data folder is too long: the files in it could not be opened.\n\nPlease move the folder "
    "to a place with a shorter name, or install Corvane again.";
constexpr DWORD kStartingWaitMs = 10000;

struct MutexTraits {
    using Type = HANDLE;
    static Type None() { return nullptr; }
    static void Close(Type h) { CloseHandle(h); }
};

// Holds a mutex between looking for a window and having one: two quick double clicks must not start the
// program twice. An instance that waits longer than ten seconds goes on without it.
class StartingGate {
public:
    StartingGate() : m_mutex(CreateMutexA(nullptr, FALSE, "Corvane.Starting")) {
        if (!m_mutex) return;
        const DWORD waited = WaitForSingleObject(m_mutex.Get(), kStartingWaitMs);
        m_owned = waited == WAIT_OBJECT_0 || waited == WAIT_ABANDONED;
    }
    ~StartingGate() { Open(); }
    StartingGate(const StartingGate&) = delete;
    StartingGate& operator=(const StartingGate&) = delete;
    void Open() {
        if (m_owned) ReleaseMutex(m_mutex.Get());
        m_owned = false;
    }

private:
    LOwned<MutexTraits> m_mutex;
    bool m_owned = false;
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

void Install(uint32_t marker, HWND running, const LPath& executable, const InstallRequest& desktops) {
    if (running != nullptr) {
        PostMessageA(running, WM_CLOSE, 0, 0);
        Sleep(CloseWaitMs(marker));
    }
    InitCommonControls();
    InstallRequest request = desktops;
    request.package = executable;
    request.folder = MakeDefaultDataFolder();
    InstallProcess process(request);
    std::string error;
    LProgressDialog::Run(process, nullptr, "Installing Corvane v 3.06", error);
    if (!error.empty()) LMessageBox(nullptr, error, "Error", MB_OK | MB_ICONEXCLAMATION);
    LWriteRegistryText(HKEY_LOCAL_MACHINE, kFoldersKey, "ProgramFiles", request.folder.View());
    LWriteRegistryText(HKEY_LOCAL_MACHINE, kFoldersKey, "DataFiles", request.folder.View());
}

void Run(StartingGate& gate) {
    SetErrorMode(SEM_FAILCRITICALERRORS);  // a card reader without a card is told by us
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
    // The recorder must not starve while other programs run.
    SetPriorityClass(GetCurrentProcess(), HIGH_PRIORITY_CLASS);
    InstallRequest desktops;
    const ShellFolders folders = ShellFolders::Read();
    desktops.desktop = folders.desktop;
    desktops.commonDesktop = folders.commonDesktop;

    StartingGate gate;
    const HWND running = FindWindowA(kDialogClass, kMainTitle);
    const LPath executable = LProgramPath();
    SetCurrentDirectoryA(LPath(LFolderOf(executable.View())).c_str());
    const uint32_t marker = InstallMarkerOf(executable);

    switch (DecideStartUp(LSplitPath(executable.View()).name, marker, running != nullptr)) {
        case StartUpAction::RefuseCorruptInstaller:
            LKeepToSystemLibraries();
            gate.Open();
            MessageBoxA(nullptr, kCorruptInstaller, "Install Error", MB_OK | MB_ICONEXCLAMATION);
            break;
        case StartUpAction::Install:
            LKeepToSystemLibraries();
            Install(marker, running, executable, desktops);
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
