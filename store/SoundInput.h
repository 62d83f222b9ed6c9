#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/LPath.h"

// Names of the input lines of a mixer device; implemented over the platform's mixer.
class InputLines {
public:
    virtual ~InputLines() = default;
    // The names in the mixer's order; empty when there is no such device.
    virtual std::vector<std::string> LineNames(int32_t device) = 0;
};

// The input of a recording.
struct SoundInput {
    int32_t device = 0;
    int32_t line = -1;  // index among the device's input lines; -1: none

    bool operator==(const SoundInput&) const = default;
};

constexpr int32_t kChooseLine = -2;  // stored value: the program chooses the line

// The microphone. If the program chooses: the last line whose name contains "MIC", in any case.
SoundInput GetSoundIn(const LPath& settingsFile, InputLines& lines);
// The same for a choice that is not stored yet.
SoundInput ResolveSoundIn(SoundInput chosen, InputLines& lines);
// The line that the portable recorder is connected to. If the program chooses: the last line whose name
// contains "LINE".
SoundInput GetDockSoundIn(const LPath& settingsFile, InputLines& lines);
SoundInput ResolveDockSoundIn(SoundInput chosen, InputLines& lines);
