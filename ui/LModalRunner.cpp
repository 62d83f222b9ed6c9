#include "ui/LModalRunner.h"

#include <algorithm>
#include <utility>

#include "ui/LCentre.h"
#include "ui/LProgressDialog.h"

// Every box, dialog and process of the main window runs inside a Stay object, so one stack tells at any time
// which kind is open. The kinds must be told apart: while a box is open the transport's commands pass,
// because a user who dictates with a pedal may not look at the window; while a process runs only stopping and
// closing pass, since it works on the dictation's files.
// Texts that arise inside a command or a list's notification are not shown at once: a box there would run
// messages in the middle of it.

// An entry of the stack. The end of the outermost one posts the requests that waited for it.
class LModalRunner::Stay {
public:
    Stay(LModalRunner& runner, Modal kind) : m_runner(runner), m_kind(kind) {
        m_runner.m_opening();
        m_runner.m_open.push_back(kind);
    }
    ~Stay() {
        m_runner.m_open.pop_back();
        m_runner.NoteInput();  // the press that closed it went past the window
        if (m_runner.m_window == nullptr || !m_runner.m_open.empty()) return;
        if (m_runner.m_closeWanted) PostMessageA(m_runner.m_window, WM_CLOSE, 0, 0);
        const bool hasTexts = !m_runner.m_later.empty() || !m_runner.m_atRest.empty();
        if (hasTexts || m_kind == Modal::Process)
            PostMessageA(m_runner.m_window, m_runner.m_laterMessage, 0, 0);
    }
    Stay(const Stay&) = delete;
    Stay& operator=(const Stay&) = delete;

private:
    LModalRunner& m_runner;
    Modal m_kind;
};

// Drops the keys that a box is given in its first second. The platform asks the filter before each message of
// a box's own loop, which the main loop never sees.
namespace {
class DeafToKeys {
public:
    DeafToKeys()
        : m_before(s_hook), m_hook(SetWindowsHookExA(WH_MSGFILTER, Filter, nullptr, GetCurrentThreadId())) {
        s_hook = m_hook;
        s_sinceMs = GetTickCount();
    }
    ~DeafToKeys() {
        s_hook = m_before;
        if (m_hook != nullptr) UnhookWindowsHookEx(m_hook);
    }
    DeafToKeys(const DeafToKeys&) = delete;
    DeafToKeys& operator=(const DeafToKeys&) = delete;

private:
    static constexpr DWORD kDeafMs = 1000;

    static LRESULT CALLBACK Filter(int code, WPARAM wParam, LPARAM lParam) {
        if (code == MSGF_DIALOGBOX && GetTickCount() - s_sinceMs < kDeafMs) {
            const auto& message = *reinterpret_cast<const MSG*>(lParam);
            if (message.message >= WM_KEYFIRST && message.message <= WM_KEYLAST) return 1;
        }
        return CallNextHookEx(s_hook, code, wParam, lParam);
    }

    static inline DWORD s_sinceMs = 0;
    static inline HHOOK s_hook = nullptr;  // of the innermost box; Windows 95 to Me ask for it
    HHOOK m_before, m_hook;
};
}  // namespace

void LModalRunner::Attach(HWND window, UINT laterMessage, std::function<void()> stop,
                          std::function<void()> opening) {
    m_window = window;
    m_laterMessage = laterMessage;
    m_stop = std::move(stop);
    m_opening = std::move(opening);
}

void LModalRunner::Detach() {
    m_window = nullptr;
    m_later.clear();
    m_atRest.clear();
}

int LModalRunner::Box(std::string_view text, std::string_view caption, UINT flags) {
    if (!MayGoOn()) return 0;
    const Stay stay(*this, Modal::Question);
    return LMessageBox(m_window, text, caption, flags);
}

int LModalRunner::UnaskedBox(std::string_view text, std::string_view caption, UINT flags) {
    const DeafToKeys deaf;
    return Box(text, caption, flags);
}

INT_PTR LModalRunner::RunModal(LDialog& dialog, int resource, Activity activity) {
    return RunModal(activity, [&](HWND owner) { return dialog.RunModal(resource, owner); });
}

INT_PTR LModalRunner::RunModal(Activity activity, const std::function<INT_PTR(HWND owner)>& show) {
    if (activity == Activity::Stops) m_stop();
    if (!MayGoOn()) return -1;
    const Stay stay(*this, Modal::Question);
    const LCentreNext centre;
    return show(m_window);
}

ProcessResult LModalRunner::Run(LProcess& process, std::string_view title, std::string& error) {
    if (!MayGoOn()) return ProcessResult::Stopped;
    const Stay stay(*this, Modal::Process);
    return LProgressDialog::Run(process, m_window, title, error);
}

// The error is told as a question, not as part of the process: the transport works meanwhile.
ProcessResult LModalRunner::RunProcess(LProcess& process, std::string_view title) {
    std::string error;
    const ProcessResult result = Run(process, title, error);
    if (!error.empty()) Tell(error);
    return result;
}

ProcessResult LModalRunner::RunUnaskedProcess(LProcess& process, std::string_view title) {
    const DeafToKeys deaf;
    std::string error;
    const ProcessResult result = Run(process, title, error);
    if (!error.empty()) TellAtRest(error);
    return result;
}

void LModalRunner::ComeForward() const {
    DWORD process = 0;
    GetWindowThreadProcessId(GetForegroundWindow(), &process);
    if (m_window == nullptr || process == GetCurrentProcessId()) return;
    if (IsIconic(m_window)) ShowWindow(m_window, SW_RESTORE);
    SetForegroundWindow(m_window);
}

void LModalRunner::TellLater(std::string_view text, std::string_view caption) {
    if (m_window == nullptr) return;
    m_later.push_back({std::string(text), std::string(caption)});
    PostMessageA(m_window, m_laterMessage, 0, 0);
}

void LModalRunner::TellAtRest(std::string_view text) {
    if (m_window == nullptr) return;
    m_atRest.emplace_back(text);
    PostMessageA(m_window, m_laterMessage, 0, 0);
}

bool LModalRunner::ShowLater() {
    if (OpenModal() != Modal::Nothing) return false;  // the end of the outermost Stay posts the message again
    for (const Later& later : std::exchange(m_later, {}))
        Box(later.text, later.caption, MB_OK | MB_ICONEXCLAMATION);
    if (m_atRest.empty() || !IsHandAtRest()) return !m_atRest.empty();
    for (const std::string& text : std::exchange(m_atRest, {}))
        UnaskedBox(text, "Error", MB_OK | MB_ICONEXCLAMATION);
    return false;
}

void LModalRunner::ShowAll() {
    for (const Later& later : std::exchange(m_later, {}))
        Box(later.text, later.caption, MB_OK | MB_ICONEXCLAMATION);
    for (const std::string& text : std::exchange(m_atRest, {}))
        UnaskedBox(text, "Error", MB_OK | MB_ICONEXCLAMATION);
}

LModalRunner::Modal LModalRunner::OpenModal() const {
    if (std::ranges::find(m_open, Modal::Process) != m_open.end()) return Modal::Process;
    return m_open.empty() ? Modal::Nothing : Modal::Question;
}

bool LModalRunner::TakeClose() {
    if (OpenModal() != Modal::Process) {
        m_closeWanted = false;  // taken: if its receiver refuses after all, commands work again
        return true;
    }
    m_closeWanted = true;
    CancelProcess();
    return false;
}

void LModalRunner::CancelProcess() {
    LProgressDialog::CancelRunning();
}
