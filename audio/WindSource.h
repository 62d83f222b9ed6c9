#pragma once

#include <cstdint>

#include "audio/LFilterSource.h"

// Runs through a source faster than it was spoken, forwards or backwards, and stays audible: short snippets,
// each played forwards, joined by cross-fades. Begins where the wrapped source stands when it is built and
// ends exactly at its end, or backwards at its start.
// Units: frames of what it delivers; GetLength() is known from the beginning.
class WindSource final : public LFilterSource {
public:
    // Speeds in multiples of normal, negative for backwards; the speed changes smoothly from the first to the
    // second within rampMs.
    WindSource(const LSoundSource& source, double initialSpeed, double finalSpeed, int32_t rampMs);

    // The wrapped source's frame that is heard at a frame of ours. Any thread.
    int32_t ToSourceFrame(int32_t frame) const;
};
