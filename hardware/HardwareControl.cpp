#include "hardware/HardwareControl.h"

// A port that fails while it is read stays open for its owner, with all controls released, and is opened anew
// by the next Poll: the handle of an adapter that was pulled out never works again, even when it is back.

namespace {

constexpr uint32_t kControlBits = (1u << kPedalControls) - 1;
constexpr uint32_t kFirstTwo = 0b0011;
constexpr uint32_t kThird = 0b0100;

}  // namespace

bool HardwareControl::Open(int32_t port) {
    using State = PedalReading::State;
    Close();
    m_number = port;
    m_bits = 0;
    m_isStale = m_isRenewalDue = false;
    m_state = State::CannotOpen;
    m_port = port < 1 ? nullptr : m_makePort(port);
    if (!m_port) return false;
    const PedalPort::Opened opened = m_port->Open();
    m_state = opened == PedalPort::Opened::Yes         ? State::Open
              : opened == PedalPort::Opened::NoLibrary ? State::NoLibrary
                                                       : State::CannotOpen;
    if (opened != PedalPort::Opened::Yes) Close();
    return m_port != nullptr;
}

uint32_t HardwareControl::Scan() {
    if (!m_port) return 0;
    const std::optional<uint32_t> read = m_port->Read();
    m_isStale = m_isStale || !read;
    const uint32_t bits = read.value_or(0) & kControlBits;
    return m_bits = bits == kFirstTwo ? kThird : bits;
}

PedalReading HardwareControl::Poll() {
    const bool wasStale = m_isStale || !m_port;
    if (wasStale || (m_isRenewalDue && m_bits == 0)) Open(m_number);
    const uint32_t bits = Scan();
    return {m_state, bits, !m_port || (m_isStale && wasStale)};
}

std::string PedalTestText(int32_t port, const PedalReading& reading) {
    using State = PedalReading::State;
    const bool cannotOpen = reading.state == State::CannotOpen || reading.state == State::NoLibrary;
    if (port != kNoPort && reading.state == State::Opening) return "Opening the port...";
    if (port != kNoPort && cannotOpen) return "Unable to open port";
    std::string pressed;
    for (int control = 0; control < kPedalControls; ++control)
        if (reading.bits >> control & 1)
            pressed += (pressed.empty() ? "" : ", ") + std::to_string(control + 1);
    return pressed.empty() ? "Nothing pressed" : "Button/Pedal " + pressed;
}
