#pragma once

#include <string>

#include "base/LProcess.h"
#include "ui/LDialog.h"

// Runs a long operation on the calling thread under a modeless dialog. Between its steps the operation
// updates the dialog and the thread's messages are pumped, so the windows repaint and Cancel can be pressed;
// the owner is disabled meanwhile, so no command can disturb the operation. A short operation shows no dialog
// at all: it appears after 300 ms. Thread: the window thread.
class LProgressDialog final : public LModelessDialog, public ProcessContext {
public:
    // Runs the process; an error text that it leaves is shown in a message box titled "Error".
    static ProcessResult Run(LProcess& process, HWND owner, std::string_view title);

    // Asks whatever runs to end, as its Cancel button would.
    static void CancelRunning();

    bool CancelRequested() override;
    void SetProgress(double fraction) override;
    void SetStatus(std::string_view text) override;
    void SetError(std::string_view text) override { m_error = text; }

private:
    LProgressDialog(HWND owner, std::string_view title);
    ~LProgressDialog() override;
    bool InitDialog() override;
    bool HandleMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) override;
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
