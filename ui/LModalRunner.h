#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "base/LProcess.h"
#include "ui/LDialog.h"

// Opens everything modal of a window: message boxes, dialogs and long processes. While one of them is open,
// commands of devices, timers and other programs still arrive through its message loop. The runner tells
// their receivers which kind is open, so that they can refuse, and takes a request to close that arrives
// meanwhile. Nothing is opened any more once the window is destroyed or is to close.
// A box that comes unasked, such as an error of the send thread, waits until the user's hands have rested,
// and is deaf to keys in its first second: a key that was meant for the notes must not answer it unread.
// Thread: the window thread.
class LModalRunner {
public:
    // The kind that is open; Process when a process is among several.
    enum class Modal { Nothing, Question, Process };
    // Whether an activity of the window, such as a playback, goes on or is stopped before a dialog opens.
    enum class Activity { GoesOn, Stops };

    LModalRunner() = default;
    LModalRunner(const LModalRunner&) = delete;
    LModalRunner& operator=(const LModalRunner&) = delete;

    // stop ends that activity; opening is called before anything opens. The window is posted laterMessage
    // when it shall call ShowLater, and when the last process has ended.
    void Attach(HWND window, UINT laterMessage, std::function<void()> stop, std::function<void()> opening);
    // The window is being destroyed; texts that wait are dropped.
    void Detach();

    // Shows a message box; returns the button, 0 when the box was not shown or was destroyed with its window.
    int Box(std::string_view text, std::string_view caption, UINT flags);
    // A box with the caption "Error" and an OK button.
    void Tell(std::string_view text) { Box(text, "Error", MB_OK | MB_ICONEXCLAMATION); }
    // A box that no command of the user leads to. Asked for only while IsHandAtRest.
    int UnaskedBox(std::string_view text, std::string_view caption, UINT flags);
    // As LDialog::RunModal; -1 also when the window is gone or is to close.
    INT_PTR RunModal(LDialog& dialog, int resource, Activity activity);
    // For other modal windows: show is called with the owner. -1 when it was not called.
    INT_PTR RunModal(Activity activity, const std::function<INT_PTR(HWND owner)>& show);
    // Runs a process under the progress dialog and shows its error text. Stopped when it was not started.
    ProcessResult RunProcess(LProcess& process, std::string_view title);
    // The same, but for the text, which is returned: empty when there is none.
    ProcessResult Run(LProcess& process, std::string_view title, std::string& error);
    // The same as RunProcess for a process that no command of the user names, such as what follows a Stop:
    // like an unasked box it is deaf to keys in its first second.
    ProcessResult RunUnaskedProcess(LProcess& process, std::string_view title);

    // Brings the window to the front, where another program is: a hot key may lead to a question.
    void ComeForward() const;

    // Queues an error text from the middle of a command or a mouse click; it is shown by ShowLater, once the
    // message is finished and nothing is open.
    void TellLater(std::string_view text, std::string_view caption = "Error");
    // Queues a text that no command leads to; ShowLater shows it while the hand rests.
    void TellAtRest(std::string_view text);
    // Shows the texts that may be shown now. True when texts still wait for the hand to rest.
    bool ShowLater();

    // Shows all that wait, before the window closes.
    void ShowAll();

    // The user pressed a key or a mouse button; called for each such message.
    void NoteInput() { m_lastInputMs = GetTickCount(); }
    // Nothing was pressed for 1.5 s.
    bool IsHandAtRest() const { return GetTickCount() - m_lastInputMs >= kRestMs; }

    Modal OpenModal() const;
    // To be tested after every call that ran messages: false when the window is destroyed or is to close.
    bool MayGoOn() const { return m_window != nullptr && !m_closeWanted; }
    // Takes a request to close. True: the window may close now. False: a process runs; it is cancelled, and
    // the window is sent WM_CLOSE again after its end.
    bool TakeClose();
    // Does the same as the Cancel button of the progress dialog.
    static void CancelProcess();

private:
    static constexpr DWORD kRestMs = 1500;

    class Stay;

    struct Later {
        std::string text;
        std::string caption;
    };

    HWND m_window = nullptr;
    UINT m_laterMessage = 0;
    std::function<void()> m_stop, m_opening;
    std::vector<Modal> m_open;
    std::vector<Later> m_later;         // of TellLater
    std::vector<std::string> m_atRest;  // texts of TellAtRest
    DWORD m_lastInputMs = 0;            // tick count
    bool m_closeWanted = false;
};
