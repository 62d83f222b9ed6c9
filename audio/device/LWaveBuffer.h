#pragma once

#include <cstdint>

#include "audio/stream/LSample.h"
#include "base/LArith.h"

// The frames of one buffer of a wave device: 100 ms, 20 to 8192 frames.
constexpr int32_t WaveBufferFrames(int32_t sampleRate) {
    return Clamp(sampleRate / 10, 20, kBlockFrames);
}
