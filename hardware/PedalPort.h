#pragma once

#include <cstdint>
#include <optional>

// A pedal or hand control with up to four controls, at one port of the machine. The destructor closes it.
// Units:  control bits; bit 0 is control 1, bit 3 control 4.
// Errors: Open and Read trace what fails.
// Thread: one at a time. Drivers may hang in any call, so the window thread makes none (PedalReader).
class PedalPort {
public:
    // NoLibrary: the add-on library for these pedals is missing.
    enum class Opened { Yes, No, NoLibrary };

    virtual ~PedalPort() = default;
    virtual Opened Open() = 0;
    // The controls that are pressed; nothing when the port cannot be read.
    virtual std::optional<uint32_t> Read() = 0;
};

constexpr int kPedalControls = 4;

// The ports in the order of the setting "port", as the settings page shows them.
constexpr int32_t kNoPort = 0;
constexpr int32_t kJoystickPort = 1;  // the first of two
constexpr int32_t kVecUsbPort = 3;
constexpr int32_t kSerialPort = 4;  // COM1, the first of four
inline constexpr const char* kPortNames[] = {
    "None", "GamePort1 or USB1", "GamePort2 or USB2", "VEC USB Pedals", "COM1", "COM2", "COM3", "COM4"};

// Control bits of the modem status of a serial port: clear to send, data set ready, ring indicator and
// receive line signal are controls 1 to 4.
constexpr uint32_t BitsOfModemStatus(uint32_t status) {
    return status >> 4 & 0xF;
}
