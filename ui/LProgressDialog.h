#pragma once

#include <string>

#include "base/LProcess.h"
#include "ui/LDialog.h"

// Runs a long operation on the calling thread under a modeless progress dialog. The operation calls the
// object between its steps; each call updates the dialog and runs the thread's messages, so windows repaint
// and Cancel works. The owner is disabled meanwhile. The dialog appears after 300 ms; a shorter operation
// shows none.
// Errors: see Run. Thread: the window thread.
class LProgressDialog final : public LModelessDialog, public ProcessContext {
public:
    // Runs the process. error: the text that it leaves for the user, to be shown once nothing runs any more.
    static ProcessResult Run(LProcess& process, HWND owner, std::string_view title, std::string& error);

    // Cancels all running operations, as their Cancel buttons would.
    static void CancelRunning();

    bool CancelRequested() override;
    void SetProgress(double fraction) override;
    // Up to two lines; a path that is too long for its line is shown without its middle.
    void SetStatus(std::string_view text) override;
    void SetTitle(std::string_view text) override;
    void SetError(std::string_view text) override { m_error = text; }

private:
    LProgressDialog(HWND owner, std::string_view title);
    ~LProgressDialog() override;
    bool InitDialog() override;
    bool HandleMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) override;
    void ShowStatus();
    void Pump();

    HWND m_owner;
    bool m_ownerWasEnabled;
    std::string m_title;
    std::string m_status;
    std::string m_error;
    double m_fraction = 0;
    DWORD m_startTick;
    bool m_isShown = false;
    bool m_cancelled = false;
};
