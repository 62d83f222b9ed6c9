#pragma once

#include <cstdint>
#include <string>

#include "base/LArith.h"

// Frames to milliseconds and back, rounded down; 0 when the rate is below 1.
constexpr int32_t FramesToMs(int32_t frames, int32_t sampleRate) {
    return sampleRate < 1 ? 0 : Saturate(int64_t{frames} * 1000 / sampleRate);
}
constexpr int32_t MsToFrames(int32_t milliseconds, int32_t sampleRate) {
    return sampleRate < 1 ? 0 : Saturate(int64_t{milliseconds} * sampleRate / 1000);
}

// A length or position in the form that the user reads: hours, minutes, seconds and milliseconds. Negative
// times count as 0; a part that a form does not show is cut off, not rounded.
// Units:  frames in, at a rate in Hz; milliseconds out.
// Thread: one at a time.
class LSoundTime {
public:
    enum class Form {
        Seconds,         // 1:02:03
        Tenths,          // 1:02:03.4
        Hundredths,      // 1:02:03.45
        Milliseconds,    // 1:02:03.456
        ShortTenths,     // 1:02:03.4
        MinutesSeconds,  // 62:03: an hour counts as sixty minutes
    };

    LSoundTime() = default;

    // False, with the time left as it was, when the rate is below 1.
    bool SetSamples(int32_t samples, int32_t sampleRate);

    int32_t Hours() const { return m_seconds / 3600; }
    int32_t Minutes() const { return m_seconds / 60 % 60; }
    int32_t Seconds() const { return m_seconds % 60; }
    int32_t Milliseconds() const { return m_milliseconds; }

    std::string Print(Form form) const;

private:
    int32_t m_seconds = 0;
    int32_t m_milliseconds = 0;  // 0 to 999
};
