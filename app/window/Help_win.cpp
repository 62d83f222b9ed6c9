#include "app/window/Help_win.h"

#include "base/LFile.h"
#include "base/LSystemFunction_win.h"
#include "base/LThread.h"
#include "res/Ids.h"
#include "ui/LShell.h"

static LPath ProgramFolder() {
    return LPath(LFolderOf(LProgramPath().View()));
}

class Help::Asking final : public LThread, private HelpViewer {
public:
    explicit Asking(HWND window) : m_window(window) {}
    ~Asking() override { Stop(); }

private:
    void ThreadFunction() override {
        // What the shell calls may need it; a platform that has not loaded it does not.
        const auto begin = LSystemFunction<HRESULT(WINAPI*)(void*)>("CoInitialize", "ole32.dll");
        const auto end = LSystemFunction<void(WINAPI*)()>("CoUninitialize", "ole32.dll");
        const bool isBegun = begin != nullptr && end != nullptr && begin(nullptr) >= 0;
        const HelpResult result = ShowHelp(ProgramFolder(), *this);
        if (isBegun) end();
        if (result != HelpResult::Shown)
            PostMessageA(m_window, WM_HELPNOTSHOWN, static_cast<WPARAM>(result), 0);
    }

    bool IsThere(const LPath& file) override { return LFile::Exists(file); }
    bool ShowHelpFile(const LPath& file) override {
        return WinHelpA(m_window, file.c_str(), HELP_FINDER, 0) != FALSE;
    }
    bool ShowPage(const LPath& file) override { return LOpenDocument(nullptr, file.c_str()); }

    HWND m_window;
};

Help::Help() = default;

// Whoever still waits for the platform is left to the end of the process.
Help::~Help() {
    if (m_asking && m_asking->IsRunning()) static_cast<void>(m_asking.release());
}

bool Help::Show() {
    if (m_asking && m_asking->IsRunning()) return false;
    m_asking = std::make_unique<Asking>(m_window);
    return m_asking->Start(kThreadNormal);
}

std::string Help::TextOf(WPARAM result) {
    return HelpText(static_cast<HelpResult>(result), ProgramFolder());
}
