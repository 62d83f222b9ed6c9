#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "hardware/PedalPort.h"

// What is known of the pedals.
struct PedalReading {
    enum class State { Opening, Open, CannotOpen, NoLibrary };

    State state = State::Opening;
    uint32_t bits = 0;     // the pressed controls, 0 while the port cannot be read
    bool isQuiet = false;  // nothing could be read, twice: to be asked again after a longer pause
};

// Reads the pedals at the chosen port. A port that cannot be opened or read has all controls released.
// Thread: one at a time.
class HardwareControl {
public:
    using MakePort = std::function<std::unique_ptr<PedalPort>(int32_t port)>;

    // makePort gives the reader of a port, nullptr for a number that no port has.
    explicit HardwareControl(MakePort makePort) : m_makePort(std::move(makePort)) {}

    // Closes the port that is open. False when this one cannot be opened, and for a number below 1.
    bool Open(int32_t port);
    // The control bits now. Controls 1 and 2 pressed together are control 3.
    uint32_t Scan();
    void Close() { m_port.reset(); }

    // Scans, after a new attempt to open a port that is closed or could not be read.
    PedalReading Poll();
    // A device was plugged in or out: the next Poll opens the port anew, while a control is pressed the first
    // one after it was let go.
    void Renew() { m_isRenewalDue = true; }

private:
    MakePort m_makePort;
    int32_t m_number = kNoPort;
    std::unique_ptr<PedalPort> m_port;
    PedalReading::State m_state = PedalReading::State::CannotOpen;
    uint32_t m_bits = 0;
    bool m_isStale = false;  // could not be read
    bool m_isRenewalDue = false;
};

// The line of the settings page that shows what is pressed.
std::string PedalTestText(int32_t port, const PedalReading& reading);
