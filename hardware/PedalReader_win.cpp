#include "hardware/PedalReader_win.h"

#include <windows.h>

#include <mmsystem.h>

#include "base/LLibrary_win.h"
#include "base/LOwned.h"
#include "base/LText.h"
#include "base/LThread.h"
#include "base/LTime.h"
#include "base/LTrace.h"
#include "hardware/VECUSBPort_win.h"

namespace {

constexpr uint32_t kAnswerMs = 10;  // a port that takes longer answers the next poll
constexpr uint32_t kCloseMs = 100;

// A pedal that the platform takes for a joystick. It opens also while none is plugged in.
class JoystickPort final : public PedalPort {
public:
    explicit JoystickPort(UINT joystick) : m_joystick(joystick) {}

    Opened Open() override {
        joyGetDevCapsA(m_joystick, &m_capabilities, sizeof m_capabilities);
        return Opened::Yes;
    }
    std::optional<uint32_t> Read() override {
        JOYINFO info = {};
        if (joyGetPos(m_joystick, &info) != JOYERR_NOERROR) return std::nullopt;
        static_assert(JOY_BUTTON1 == 1 && JOY_BUTTON2 == 2 && JOY_BUTTON3 == 4 && JOY_BUTTON4 == 8);
        return info.wButtons;
    }

private:
    UINT m_joystick;
    JOYCAPSA m_capabilities = {};
};

class SerialPort final : public PedalPort {
public:
    explicit SerialPort(int32_t number) : m_number(number) {}

    Opened Open() override {
        const std::string name = LFormat("COM%d", static_cast<int>(m_number));
        m_port.Reset(CreateFileA(name.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
        if (!m_port) return Opened::No;
        // Drivers set up their lines when they are given a state, also an unchanged one.
        DCB state = {};
        state.DCBlength = sizeof state;
        if (!GetCommState(m_port.Get(), &state) || !SetCommState(m_port.Get(), &state))
            LTrace("HardwareControl::Open() the state of the port FAILED");
        return Opened::Yes;
    }
    std::optional<uint32_t> Read() override {
        DWORD status = 0;
        static_assert(MS_CTS_ON == 0x10 && MS_DSR_ON == 0x20 && MS_RING_ON == 0x40 && MS_RLSD_ON == 0x80);
        if (GetCommModemStatus(m_port.Get(), &status)) return BitsOfModemStatus(status);
        LTrace("HardwareControl::Scan() GetCommModemStatus FAILED");
        return std::nullopt;
    }

private:
    struct PortTraits {
        using Type = HANDLE;
        static Type None() { return INVALID_HANDLE_VALUE; }
        static void Close(Type h) { CloseHandle(h); }
    };

    int32_t m_number;
    LOwned<PortTraits> m_port;
};

std::unique_ptr<PedalPort> MakePort(int32_t port) {
    if (port >= kSerialPort && port < static_cast<int32_t>(std::size(kPortNames)))
        return std::make_unique<SerialPort>(port - kSerialPort + 1);
    if (port == kVecUsbPort) return std::make_unique<VECUSBPort>();
    if (port == kJoystickPort || port == kJoystickPort + 1)
        return std::make_unique<JoystickPort>(port == kJoystickPort ? JOYSTICKID1 : JOYSTICKID2);
    return nullptr;
}

}  // namespace

struct PedalReader::Shared {
    HardwareControl control{MakePort};  // the thread's
    LCriticalSection lock;
    PedalReading reading;  // under the lock
};

void PedalReader::Open(int32_t port) {
    Close();
    if (port < 1) return;
    m_shared = std::make_shared<Shared>();
    m_askedMs = LTickMs();
    m_thread = std::make_unique<DriverThread>();
    m_thread->Give([shared = m_shared, port] { shared->control.Open(port); });
}

void PedalReader::Close() {
    if (!m_thread) return;
    m_thread->Give([shared = m_shared] { shared->control.Close(); });
    m_thread->Wait(kCloseMs);
    m_thread.reset();
    m_shared.reset();
}

PedalReading PedalReader::Poll() {
    if (!m_thread) return {};
    if (m_thread->Wait(0)) {
        m_askedMs = LTickMs();
        m_thread->Give([shared = m_shared] {
            const PedalReading reading = shared->control.Poll();
            const LLock locked(shared->lock);
            shared->reading = reading;
        });
        m_thread->Wait(kAnswerMs);
    }
    const bool isHung = LTickMs() - m_askedMs > kHungMs && !m_thread->Wait(0);
    const LLock locked(m_shared->lock);
    if (isHung) m_shared->reading = {PedalReading::State::CannotOpen, 0, false};
    return m_shared->reading;
}

void PedalReader::Renew() {
    if (m_thread) m_thread->Give([shared = m_shared] { shared->control.Renew(); });
}
