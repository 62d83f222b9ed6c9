#include "hardware/VECUSBPort_win.h"

#include <atomic>
#include <utility>

#include "base/LTrace.h"

// The library has one watch for the whole program: a port that was left behind on its thread would stop that
// of the next one.
static std::atomic<bool> s_isTaken{false};

VECUSBPort::~VECUSBPort() {
    Close();
    if (m_isOwner) s_isTaken = false;
}

PedalPort::Opened VECUSBPort::Open() {
    m_isOwner = m_isOwner || !s_isTaken.exchange(true);
    if (!m_isOwner) return Opened::No;
    m_library = LLoadAddOn("HidProbe.dll");
    if (!m_library) {
        LTrace("VECUSBPort::Open() LoadLibrary HidProbe FAILED!");
        return Opened::NoLibrary;
    }
    if (!FindFunctions()) return Opened::No;
    m_isStarted = m_startWatch() != 0;
    if (!m_isStarted) LTrace("VECUSBPort::Open() StartWatch HidProbe FAILED!");
    static_cast<void>(m_library.Release());
    return m_isStarted ? Opened::Yes : Opened::No;
}

bool VECUSBPort::FindFunctions() {
    const struct {
        const char* name;
        Function& function;
        const char* missing;
    } kFunctions[] = {
        {"StartWatch", m_startWatch, "VECUSBPort::Open() GetProcAddress(StartWatch) FAILED"},
        {"StopWatch", m_stopWatch, "VECUSBPort::Open() GetProcAddress(StopWatch) FAILED"},
        {"GetData", m_getData, "VECUSBPort::Open() GetProcAddress(GetData) FAILED"},
    };
    for (const auto& [name, function, missing] : kFunctions) {
        function = LFunctionOf<Function>(m_library, name);
        if (function != nullptr) continue;
        LTrace(missing);
        return false;
    }
    return true;
}

uint32_t VECUSBPort::GetData() const {
    return m_isStarted ? static_cast<uint32_t>(m_getData()) : 0;
}

void VECUSBPort::Close() {
    if (std::exchange(m_isStarted, false)) m_stopWatch();
}
