#include "install/RunningCopy_win.h"

#include "base/LTime.h"
#include "install/InstallFiles.h"
#include "ui/LWin.h"

constexpr char kMainTitle[] = "Corvane";
constexpr char kDialogClass[] = "#32770";
constexpr uint32_t kPatienceMs = 30000;
constexpr uint32_t kPollMs = 50;
constexpr char kStillRuns[] =
    "Corvane is still running, here or where another user is logged on.\n\nPlease finish what it is doing, "
    "close it, and choose Retry. Nothing that was recorded will be lost.";

HWND FindRunningCopy() {
    HWND window = nullptr;
    while ((window = FindWindowExA(nullptr, window, kDialogClass, kMainTitle)) != nullptr)
        if (GetWindow(window, GW_OWNER) == nullptr) return window;
    return nullptr;
}

bool AskRunningCopyToClose() {
    const HWND running = FindRunningCopy();
    return running != nullptr && PostMessageA(running, WM_CLOSE, 0, 0);
}

ProcessResult WaitForRunningCopy(const LPath& program, ProcessContext& context) {
    uint32_t begun = LTickMs();
    while (FindRunningCopy() != nullptr || IsProgramHeld(program)) {
        context.SetStatus("Waiting until Corvane has closed...");
        if (context.CancelRequested()) return ProcessResult::Stopped;
        LSleep(kPollMs);
        if (LTickMs() - begun < kPatienceMs) continue;
        if (LMessageBox(GetActiveWindow(), kStillRuns, "Corvane Is Running",
                        MB_RETRYCANCEL | MB_ICONEXCLAMATION) != IDRETRY)
            return ProcessResult::Stopped;
        AskRunningCopyToClose();
        begun = LTickMs();
    }
    return ProcessResult::Done;
}
