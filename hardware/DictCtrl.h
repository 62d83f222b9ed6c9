#pragma once

#include <cstdint>

// The control device of a dictation microphone: an MCI device of the type "DictCtrl", whose driver comes with
// the microphone. The numbers are those of the vendor's driver as far as they are known: the codes of the
// buttons are certain, those of the device-specific commands and of the display are to be compared with the
// header of the driver that is delivered. They stand here and nowhere else.
namespace DictCtrl {

inline constexpr char kDeviceType[] = "DictCtrl";

// Device-specific commands, beyond the platform's own (MCI_USER_MESSAGES is 0xC00). Each takes a Parameters.
enum Command : uint32_t {
    MCICTRL_ACTIVATE = 0xC01,         // buttons are told from now on: window and message
    MCICTRL_DEACTIVATE = 0xC02,       // not any more
    MCICTRL_SETDISPLAYSTATE = 0xC03,  // state: one of Display
};

struct Parameters {
    uintptr_t callback;  // as in all of the platform's parameter blocks; the window that is told
    uint32_t message;    // its low word of the first parameter will be one of Button
    uint32_t state;
};

enum class Display : uint32_t { Stopped = 0, Recording = 1, Playing = 2 };

enum Button {
    MCICTRL_CMD_STOP_PRESSED = 2,
    MCICTRL_CMD_STOP_RELEASED = 3,
    MCICTRL_CMD_PLAY_PRESSED = 4,
    MCICTRL_CMD_PLAY_RELEASED = 5,
    MCICTRL_CMD_RECORD_PRESSED = 6,
    MCICTRL_CMD_RECORD_RELEASED = 7,
    MCICTRL_CMD_INSERT_PRESSED = 8,
    MCICTRL_CMD_INSERT_RELEASED = 9,
    MCICTRL_CMD_LETTEREND_PRESSED = 10,
    MCICTRL_CMD_FRWD_PRESSED = 12,
    MCICTRL_CMD_FRWD_RELEASED = 13,
    MCICTRL_CMD_FFWD_PRESSED = 14,
    MCICTRL_CMD_FFWD_RELEASED = 15,
    MCICTRL_CMD_PLAYSTOP_TOGGLE_PRESSED = 20,
    MCICTRL_CMD_PLAYSTOP_TOGGLE_RELEASED = 21,
};

}  // namespace DictCtrl
