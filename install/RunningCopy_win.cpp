#include "install/RunningCopy_win.h"

#include <tlhelp32.h>

#include "base/LOwned.h"
#include "base/LSystemFunction_win.h"
#include "base/LTime.h"
#include "install/InstallFiles.h"
#include "ui/LWin.h"

namespace {

constexpr char kMainTitle[] = "Corvane";
constexpr char kDialogClass[] = "#32770";
constexpr uint32_t kPatienceMs = 30000;
constexpr uint32_t kPollMs = 50;
constexpr char kStillRuns[] =
    "Corvane is still running, here or where another user is logged on.\n\nPlease finish what it is doing, "
    "close it, and choose Retry. Nothing that was recorded will be lost.";

struct SnapshotTraits {
    using Type = HANDLE;
    static Type None() { return INVALID_HANDLE_VALUE; }
    static void Close(Type h) { CloseHandle(h); }
};

// Asks each copy once, also one that has its window only now. What it asks in turn is brought to the front.
class CloseRequest {
public:
    void Give() {
        const HWND running = FindRunningCopy();
        if (running != nullptr && running != m_asked) PostMessageA(running, WM_CLOSE, 0, 0);
        m_asked = running;
        const HWND box = running != nullptr ? GetLastActivePopup(running) : nullptr;
        if (box != running && box != m_shown) SetForegroundWindow(box);
        m_shown = box;
    }
    void GiveAgain() { m_asked = nullptr; }

private:
    HWND m_asked = nullptr;
    HWND m_shown = nullptr;
};

}  // namespace

HWND FindRunningCopy() {
    HWND window = nullptr;
    while ((window = FindWindowExA(nullptr, window, kDialogClass, kMainTitle)) != nullptr)
        if (GetWindow(window, GW_OWNER) == nullptr) return window;
    return nullptr;
}

LPath RunningCopyPath() {
    DWORD process = 0;
    GetWindowThreadProcessId(FindRunningCopy(), &process);
    using Snapshot = HANDLE(WINAPI*)(DWORD, DWORD);
    using First = BOOL(WINAPI*)(HANDLE, MODULEENTRY32*);
    const auto takeSnapshot = LSystemFunction<Snapshot>("CreateToolhelp32Snapshot");
    const auto getFirst = LSystemFunction<First>("Module32First");
    if (process == 0 || takeSnapshot == nullptr || getFirst == nullptr) return {};
    const LOwned<SnapshotTraits> modules(takeSnapshot(TH32CS_SNAPMODULE, process));
    MODULEENTRY32 program = {};
    program.dwSize = sizeof program;
    return modules && getFirst(modules.Get(), &program) ? LPath(program.szExePath) : LPath();
}

bool AskRunningCopyToClose() {
    const HWND running = FindRunningCopy();
    return running != nullptr && PostMessageA(running, WM_CLOSE, 0, 0);
}

ProcessResult WaitForRunningCopy(const LPath& program, ProcessContext& context) {
    CloseRequest request;
    uint32_t begun = LTickMs();
    while (FindRunningCopy() != nullptr || IsProgramHeld(program)) {
        context.SetStatus("Waiting until Corvane has closed...");
        if (context.CancelRequested()) return ProcessResult::Stopped;
        request.Give();
        LSleep(kPollMs);
        if (LTickMs() - begun < kPatienceMs) continue;
        if (LMessageBox(GetActiveWindow(), kStillRuns, "Corvane Is Running",
                        MB_RETRYCANCEL | MB_ICONEXCLAMATION) != IDRETRY)
            return ProcessResult::Stopped;
        request.GiveAgain();
        begun = LTickMs();
    }
    return ProcessResult::Done;
}
