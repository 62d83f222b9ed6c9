#pragma once

#include <cstddef>
#include <cstdint>

#include "audio/stream/LGain.h"

// A gain that moves by a step with every frame. Gains are fractions of 24 bits, from 0 to kUnityGain.
struct LGainRamp {
    int32_t gain;  // of the first frame
    int32_t step;
    int32_t lowest;  // products below it, by a rounding towards minus infinity, are held at it
};

// The coefficients of a sinc filter (LSincFilter), for the interpolation of frames from a history on the
// 16-bit scale. Each phase has two halves of `half` (8 or 32) coefficients; the first half applies to the
// history from frame 1 on, the second from frame half - 1 on.
struct LSincRows {
    const int16_t* rows;  // aligned to 16 bytes
    uint32_t half;
    uint32_t phases;
    uint32_t step;  // above 0
};

// The loops that every sample passes, in a version for any processor, in one for MMX and in one for SSE2. All give
// the same result to the bit. Pointers need no alignment; input and output do not overlap.
struct LKernels {
    // The largest magnitude of count samples; -2^31 counts as 2^31.
    uint32_t (*peak)(const int32_t* samples, size_t count);

    // Between PCM and the 20-bit scale, by the rules of LSample.h. 16-bit PCM is little-endian.
    void (*fromPcm8)(const uint8_t* pcm, int32_t* samples, size_t count);
    void (*fromPcm16)(const uint8_t* pcm, int32_t* samples, size_t count);
    void (*toPcm8)(const int32_t* samples, uint8_t* pcm, size_t count);
    void (*toPcm16)(const int32_t* samples, uint8_t* pcm, size_t count);

    // Multiplies each value by the gain of its frame, in halves of 12 bits: high times high, plus the two
    // cross products shifted right by 12. The magnitude of a product is at most 2^22; lowest is 0 or less.
    void (*ramp)(const LGainRamp& ramp, const int32_t* in, int32_t* out, size_t frames, size_t channels);

    // Samples on the 16-bit scale, (v + 8) >> 4, held at full scale.
    void (*narrow)(const int32_t* samples, int16_t* narrowed, size_t count);
    // count samples, one to each stride-th place of out. After each the phase grows by rows.step and the
    // place in the history by the whole phases in it. A sample is (first half >> 1) + (second half >> 1),
    // rounded and divided by 2048, as if there were no limit of 32 bits to any of them.
    void (*interpolate)(const LSincRows& rows, uint32_t phase, const int16_t* history, int32_t* out,
                        size_t count, size_t stride);
};

// For any processor.
extern const LKernels kPlainKernels;
// For processors with MMX, whose registers every platform saves when it changes threads; calling it elsewhere is
// an illegal instruction. It leaves the floating-point unit as it found it, as long as that held no values.
extern const LKernels kMmxKernels;
// For processors with SSE2, on a platform that saves its registers too.
extern const LKernels kSse2Kernels;

// The fastest version that runs here, found out once.
const LKernels& Kernels();
