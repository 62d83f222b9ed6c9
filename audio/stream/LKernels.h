#pragma once

#include <cstddef>
#include <cstdint>

#include "audio/stream/LGain.h"

// A gain that changes linearly, by one step for each frame. Gains are fractions of 24 bits, from 0 to
// kUnityGain.
struct LGainRamp {
    int32_t gain;  // of the first frame
    int32_t step;
    int32_t lowest;  // products are held at it: they round towards minus infinity, below a negative limit
};

// The coefficients of a sinc filter (LSincFilter), in the layout that the interpolation loop reads: one row
// for each phase. A row has two halves of `half` (8 or 32) coefficients, so that the sums of a half fit into
// 32 bits. The first half applies to the history from frame 1 of the window on, the second from frame half -
// 1 on; the two taps in the middle are in both.
struct LSincRows {
    const int16_t* rows;  // aligned to 16 bytes
    uint32_t half;
    uint32_t phases;
    uint32_t step;  // above 0
};

// The loops that every sample passes when it is recorded, converted or played, as a table of functions. There
// are three tables: for any processor, for MMX and for SSE2. All give the same result to the bit, so tests
// and callers need not know which one runs.
// Units:  samples on the 20-bit scale (LSample.h); counts are samples, frames where the name says so.
// Thread: any; the loops have no state. Pointers need no alignment; input and output do not overlap.
struct LKernels {
    // The largest magnitude of count samples; -2^31 counts as 2^31.
    uint32_t (*peak)(const int32_t* samples, size_t count);

    // Conversion between PCM and the 20-bit scale, by the rules of LSample.h. 16-bit PCM is little-endian.
    void (*fromPcm8)(const uint8_t* pcm, int32_t* samples, size_t count);
    void (*fromPcm16)(const uint8_t* pcm, int32_t* samples, size_t count);
    void (*toPcm8)(const int32_t* samples, uint8_t* pcm, size_t count);
    void (*toPcm16)(const int32_t* samples, uint8_t* pcm, size_t count);

    // Multiplies each value by the gain of its frame, as TimesGain does. The magnitude of a product is at
    // most 2^22; lowest is 0 or less.
    void (*ramp)(const LGainRamp& ramp, const int32_t* in, int32_t* out, size_t frames, size_t channels);

    // Rounds samples to the 16-bit scale, (v + 8) >> 4, and holds them at full scale: the input of
    // interpolate.
    void (*narrow)(const int32_t* samples, int16_t* narrowed, size_t count);
    // Computes count samples of one channel by a sinc filter and writes one to each stride-th place of out.
    // history points at the window of the first one. After each sample the phase grows by rows.step; the
    // window moves by the whole phases in the sum. A sample is (first half >> 1) + (second half >> 1),
    // rounded and divided by 2048, as if none of them were limited to 32 bits.
    void (*interpolate)(const LSincRows& rows, uint32_t phase, const int16_t* history, int32_t* out,
                        size_t count, size_t stride);
};

// For any processor.
extern const LKernels kPlainKernels;
// For processors with MMX; on others it ends in an illegal instruction. Every platform saves its registers
// when it changes threads. A loop leaves the floating-point unit empty, as it must be when the loop is
// called.
extern const LKernels kMmxKernels;
// For processors with SSE2, on a platform that saves the SSE registers when it changes threads.
extern const LKernels kSse2Kernels;

// The fastest table that processor and platform allow, chosen once.
const LKernels& Kernels();
