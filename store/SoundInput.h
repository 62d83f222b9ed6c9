#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/LPath.h"

// Tells the names of a mixer device's input lines; the mixer implements it.
class InputLines {
public:
    virtual ~InputLines() = default;
    // In the mixer's order; empty when there is no such device.
    virtual std::vector<std::string> LineNames(int32_t device) = 0;
};

// Which input a recording is made from.
struct SoundInput {
    int32_t device = 0;
    int32_t line = -1;  // index among the device's input lines; -1: none
};

constexpr int32_t kChooseLine = -2;  // the stored value that lets the program choose

// The microphone: chosen by the program, the last line whose name contains "MIC".
SoundInput GetSoundIn(const LPath& settingsFile, InputLines& lines);
// The line that the portable recorder plays into: chosen by the program, the last whose name contains "LINE".
SoundInput GetDockSoundIn(const LPath& settingsFile, InputLines& lines);
