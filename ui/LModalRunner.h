#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "base/LProcess.h"
#include "ui/LDialog.h"

// Opens what stands before a window until the user, or the work, is done with it: message boxes, modal dialogs and
// long processes. While one stands, commands of devices, timers and other programs go on arriving; the runner tells
// what stands, so that whoever receives them can decide, and takes the request to close that comes meanwhile.
// Nothing is opened any more once the window is gone or is to close.
// Thread: the window thread.
class LModalRunner {
public:
    enum class Standing { Nothing, Question, Process };
    // What runs beside, such as a playback, goes on while a dialog stands, or is stopped before.
    enum class WhatRuns { GoesOn, Stops };

    LModalRunner() = default;
    LModalRunner(const LModalRunner&) = delete;
    LModalRunner& operator=(const LModalRunner&) = delete;

    // stop ends what runs beside. The window is posted laterMessage when ShowLater has something to show.
    void Attach(HWND window, UINT laterMessage, std::function<void()> stop);
    void Detach();

    // The button, 0 when the box was not shown or went with its window.
    int Box(std::string_view text, std::string_view caption, UINT flags);
    // "Error" with OK.
    void Tell(std::string_view text) { Box(text, "Error", MB_OK | MB_ICONEXCLAMATION); }
    // As LDialog::RunModal; -1 also when the window is gone or is to close.
    INT_PTR RunModal(LDialog& dialog, int resource, WhatRuns whatRuns);
    // Whatever else is modal: show is given the owner. -1 when it was not called.
    INT_PTR RunModal(WhatRuns whatRuns, const std::function<INT_PTR(HWND owner)>& show);
    // Under the progress dialog; an error text of the process is shown.
    ProcessResult RunProcess(LProcess& process, std::string_view title);

    // A text that may come from the middle of a command or a mouse click: shown when that is over and nothing stands.
    void TellLater(std::string_view text);
    void ShowLater();

    Standing What() const;
    // Asked by whoever has run messages meanwhile: false when the window has gone or is to close.
    bool MayGoOn() const { return m_window != nullptr && !m_closeWanted; }
    // The window is asked to close. False while a process runs: it is cancelled, and the window asked again.
    bool TakeClose();
    // As the process's own Cancel.
    static void CancelProcess();

private:
    class Stay;

    HWND m_window = nullptr;
    UINT m_laterMessage = 0;
    std::function<void()> m_stop;
    std::vector<Standing> m_standing;
    std::vector<std::string> m_later;
    bool m_closeWanted = false;
};
