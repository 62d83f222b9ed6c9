#pragma once

#include <windows.h>

#include <memory>

#include "hardware/DictCtrl.h"
#include "hardware/DriverThread_win.h"

// The control device of the dictation microphone. Its driver sends WM_MICBUTTON to the window for each button
// that is pressed or released, and shows on the microphone what the program does.
// Errors: a device that cannot be opened is tried again at each Retry; only the first failure is traced.
// Thread: the window thread. The driver's calls are made on a thread of their own: the platform binds a
//         device to the thread that opened it.
class DictationMicrophone {
public:
    ~DictationMicrophone() { Close(); }

    // The window is posted lostMessage when the device cannot be opened any more: its buttons are released.
    void Open(HWND window, UINT lostMessage);
    // Tries again to open a device that is not open; called at quiet intervals.
    void Retry();
    // A device was plugged in or out: opens it anew, since a driver may have lost its microphone. While one
    // of its buttons is held (isHeld) only if it is lost, as the release would be. False: to be called again.
    bool Renew(bool isHeld);
    void Show(DictCtrl::Display display);
    // Ends the notifications and closes the device; waits for a second at most.
    void Close();

private:
    class Device;

    std::unique_ptr<DriverThread> m_thread;
    std::shared_ptr<Device> m_device;  // the thread's
    DictCtrl::Display m_shown = DictCtrl::Display::Stopped;
};
