#pragma once

#include <cstdint>
#include <string>

// What becomes of a recording from a portable recorder.
enum class DockState {
    Waits,      // for the first sound
    Records,    // has heard one; also in the pauses of voice activation
    NoDevice,   // the sound card did not open, or was left to the microphone
    NoFile,     // the dictation's file cannot be written
    BadSpeed,   // the speed is no number of percent that can be converted
    TimeIsUp,   // an hour is full
    HasFailed,  // ended by itself: device or disk
};

// The longest recording from a portable recorder: one hour of its playing.
constexpr int32_t kMostDockMs = 3600000;

const char* DockStateText(DockState state);

// The length of what was recorded, "Recorded: 01:05"; at high speed a second of the tape's holds more speech.
// Units:  playedMs of the tape's playing; percent of normal speed.
std::string DockLengthText(int32_t playedMs, int32_t percent);
