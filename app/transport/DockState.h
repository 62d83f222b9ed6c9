#pragma once

#include <cstdint>
#include <string>

// What becomes of a recording from a portable recorder.
enum class DockState {
    Waits,      // for the first sound
    TooQuiet,   // still waits, though a tape seems to play
    Records,    // has heard one; also in the pauses of voice activation
    Changed,    // records, while other settings are chosen, which do not count yet
    NoDevice,   // the sound card did not open, or was left to the microphone
    NoFile,     // the dictation's file cannot be written
    BadSpeed,   // the speed is no number of percent that can be converted
    TimeIsUp,   // an hour is full
    HasFailed,  // ended by itself: device or disk
};

// The longest recording from a portable recorder: one hour of its playing.
constexpr int32_t kMostDockMs = 3600000;
// The lowest level that can start one, where the meter begins.
constexpr int8_t kLeastDockDb = -48;

const char* DockStateText(DockState state);

// Whether a tape plays below the level that starts the recording: there is something on the meter for five
// seconds, less the silence between.
// Thread: one at a time.
class QuietTape {
public:
    static constexpr uint32_t kTickMs = 250;

    void Level(int8_t levelDb) { m_isHeard |= levelDb > kLeastDockDb; }
    // Every kTickMs.
    bool Tick();

private:
    static constexpr int32_t kTicks = 5000 / kTickMs;

    bool m_isHeard = false;  // since the last tick
    int32_t m_ticks = 0;
};

// The length of what was recorded, "Recorded: 01:05"; at high speed a second of the tape's holds more speech.
// Units:  playedMs of the tape's playing; percent of normal speed.
std::string DockLengthText(int32_t playedMs, int32_t percent);
