#pragma once

#include <cstddef>
#include <cstdint>

#include "audio/mp3/MP3Data.h"

constexpr size_t kMP3Bands = 32;         // of lines, 18 in each
constexpr size_t kMP3Slots = 18;         // samples of each band in a granule
constexpr int32_t kMP3Level = 0x200000;  // four times full scale

// One slot of the transform: the values 16 to 31, then 16 down to 1, and what the middle of the output needs.
constexpr size_t kMP3SlotFloats = 36;
constexpr size_t kMP3PastSlots = 15;

// What one channel keeps from granule to granule.
struct MP3ChannelState {
    float overlap[kMP3Lines];
    size_t overlapBands = 0;  // beyond them the overlap is 0
    float history[(kMP3PastSlots + kMP3Slots) * kMP3SlotFloats];
};

// The loops that take a decoder's time, as a table of functions: one for any processor and one for SSE2. The
// results agree within rounding. The layout of MP3ChannelState differs, so a stream stays with one table.
// Thread: any, once prepare() has returned.
struct MP3Kernels {
    void (*prepare)();  // makes their tables, unless they are there
    // left + right, left - right
    void (*midSide)(float* left, float* right, size_t lines);
    // The butterflies at the first so many limits between bands.
    void (*reduceAlias)(float* lines, size_t limits);
    // Transforms the lines of a granule to 18 slots of 32 band values each. Beyond `bands` the lines are 0.
    // The first longBands of a granule of short blocks are long ones.
    void (*transform)(const float* lines, size_t bands, uint8_t blockType, size_t longBands,
                      MP3ChannelState& state, float* slots);
    // Filters the slots of one or two channels, one channel's behind the other's, to interleaved samples on
    // the 20-bit scale, held within kMP3Level.
    void (*synthesise)(float* slots, MP3ChannelState* states, size_t channels, int32_t* samples);
};

extern const MP3Kernels kPlainMP3Kernels;
// For processors with SSE2, on a platform that saves the SSE registers when it changes threads.
extern const MP3Kernels kSse2MP3Kernels;

// The faster one of those that processor and platform allow, chosen once.
const MP3Kernels& GetMP3Kernels();
