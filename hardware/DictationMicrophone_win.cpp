#include "hardware/DictationMicrophone_win.h"

#include <mmsystem.h>

#include <utility>

#include "base/LTrace.h"
#include "res/Ids.h"

constexpr uint32_t kMicCloseMs = 1000;
// The platform passes a driver only numbers of this range.
static_assert(DictCtrl::MCICTRL_ACTIVATE > MCI_USER_MESSAGES &&
              DictCtrl::MCICTRL_SETDISPLAYSTATE <= DRV_MCI_LAST);

class DictationMicrophone::Device {
public:
    Device(HWND window, UINT lostMessage) : m_window(window), m_lostMessage(lostMessage) {}

    void Open() {
        if (m_device != 0) return;
        if (!TryOpen() && std::exchange(m_wasOpen, false)) PostMessageA(m_window, m_lostMessage, 0, 0);
        m_isTold = true;
        m_wasOpen = m_device != 0;
        if (m_device != 0) Show(m_display);
    }

    void Show(DictCtrl::Display display) {
        m_display = display;
        if (m_device != 0 && !Send(DictCtrl::MCICTRL_SETDISPLAYSTATE))
            LTrace("SpeechMike Set DisplayState FAILED");
    }

    void Renew() {
        Close();
        Open();
    }

    // The same, unless the microphone still answers.
    void RenewIfLost() {
        if (m_device == 0 || !Send(DictCtrl::MCICTRL_SETDISPLAYSTATE)) Renew();
    }

    void Close() {
        if (m_device == 0) return;
        if (!Send(DictCtrl::MCICTRL_DEACTIVATE)) LTrace("SpeechMike Deactive FAILED");
        CloseDevice();
    }

private:
    bool TryOpen() {
        MCI_OPEN_PARMSA open = {};
        open.lpstrDeviceType = const_cast<char*>(DictCtrl::kDeviceType);
        const DWORD flags = MCI_OPEN_TYPE | MCI_OPEN_SHAREABLE | MCI_WAIT;
        if (mciSendCommandA(0, MCI_OPEN, flags, reinterpret_cast<DWORD_PTR>(&open)) != 0)
            return Fail("SpeechMike Open Failed");
        m_device = open.wDeviceID;
        if (Send(DictCtrl::MCICTRL_ACTIVATE)) return true;
        CloseDevice();
        return Fail("SpeechMike Activate Failed");
    }

    bool Fail(const char* line) const {
        if (!m_isTold) LTrace(line);
        return false;
    }

    bool Send(DictCtrl::Command command) const {
        DictCtrl::Parameters parameters = {reinterpret_cast<uintptr_t>(m_window), WM_MICBUTTON,
                                           static_cast<uint32_t>(m_display)};
        return mciSendCommandA(m_device, command, MCI_WAIT, reinterpret_cast<DWORD_PTR>(&parameters)) == 0;
    }

    void CloseDevice() {
        if (mciSendCommandA(std::exchange(m_device, 0), MCI_CLOSE, MCI_WAIT, 0) != 0)
            LTrace("SpeechMike Close FAILED");
    }

    HWND m_window;
    UINT m_lostMessage;
    MCIDEVICEID m_device = 0;
    DictCtrl::Display m_display = DictCtrl::Display::Stopped;
    bool m_wasOpen = false;
    bool m_isTold = false;
};

void DictationMicrophone::Open(HWND window, UINT lostMessage) {
    Close();
    m_device = std::make_shared<Device>(window, lostMessage);
    m_thread = std::make_unique<DriverThread>();
    m_thread->Give([device = m_device] { device->Open(); });
}

void DictationMicrophone::Retry() {
    if (m_thread && m_thread->Wait(0)) m_thread->Give([device = m_device] { device->Open(); });
}

bool DictationMicrophone::Renew(bool isHeld) {
    if (!m_thread) return true;
    if (!m_thread->Wait(0)) return false;
    m_thread->Give([device = m_device, isHeld] { isHeld ? device->RenewIfLost() : device->Renew(); });
    return !isHeld;
}

void DictationMicrophone::Show(DictCtrl::Display display) {
    if (std::exchange(m_shown, display) == display || !m_thread) return;
    m_thread->Give([device = m_device, display] { device->Show(display); });
}

void DictationMicrophone::Close() {
    if (!m_thread) return;
    m_thread->Give([device = m_device] { device->Close(); });
    m_thread->Wait(kMicCloseMs);
    m_thread.reset();
    m_device.reset();
}
