#pragma once

#include <cstdint>

#include "audio/stream/LSample.h"
#include "base/LArith.h"

// The frames of one buffer of a wave device: 100 ms, held to 20 to 8192 frames. Recorder and player move
// audio in such buffers, and the voice gate decides once for each.
constexpr int32_t WaveBufferFrames(int32_t sampleRate) {
    return Clamp(sampleRate / 10, 20, kBlockFrames);
}
