#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "base/LProcess.h"
#include "ui/LDialog.h"

// Opens everything modal of a window: message boxes, dialogs and long processes ("standing" below means:
// open). While one of them is open, commands of devices, timers and other programs still arrive through its
// message loop. The runner tells their receivers which kind is open, so that they can refuse, and takes a
// request to close that arrives meanwhile. Nothing is opened any more once the window is destroyed or is to
// close.
// Thread: the window thread.
class LModalRunner {
public:
    // The kind that is open; Process when a process is among several.
    enum class Standing { Nothing, Question, Process };
    // Whether an activity of the window, such as a playback, goes on or is stopped before a dialog opens.
    enum class WhatRuns { GoesOn, Stops };

    LModalRunner() = default;
    LModalRunner(const LModalRunner&) = delete;
    LModalRunner& operator=(const LModalRunner&) = delete;

    // stop ends that activity. The window is posted laterMessage when it shall call ShowLater.
    void Attach(HWND window, UINT laterMessage, std::function<void()> stop);
    // The window is being destroyed; texts that wait are dropped.
    void Detach();

    // Shows a message box; returns the button, 0 when the box was not shown or was destroyed with its window.
    int Box(std::string_view text, std::string_view caption, UINT flags);
    // A box with the caption "Error" and an OK button.
    void Tell(std::string_view text) { Box(text, "Error", MB_OK | MB_ICONEXCLAMATION); }
    // As LDialog::RunModal; -1 also when the window is gone or is to close.
    INT_PTR RunModal(LDialog& dialog, int resource, WhatRuns whatRuns);
    // For other modal windows: show is called with the owner. -1 when it was not called.
    INT_PTR RunModal(WhatRuns whatRuns, const std::function<INT_PTR(HWND owner)>& show);
    // Runs a process under the progress dialog and shows its error text. Stopped when it was not started.
    ProcessResult RunProcess(LProcess& process, std::string_view title);

    // Queues an error text from the middle of a command or a mouse click; it is shown by ShowLater, once the
    // message is finished and nothing is open.
    void TellLater(std::string_view text);
    void ShowLater();

    Standing What() const;
    // To be tested after every call that ran messages: false when the window is destroyed or is to close.
    bool MayGoOn() const { return m_window != nullptr && !m_closeWanted; }
    // Takes a request to close. True: the window may close now. False: a process runs; it is cancelled, and
    // the window is sent WM_CLOSE again after its end.
    bool TakeClose();
    // Does the same as the Cancel button of the progress dialog.
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
