#pragma once

#include <cstdint>

// The one sample format between all audio stages: signed 32 bits on a 20-bit scale, interleaved by channel.
// Full scale is +-2^19 (0x80000). A 16-bit sample has 4 bits below it for rounding, and 12 dB of room lie
// above full scale for filters that overshoot. Integers were chosen over floating point because the 32-bit
// build computes floats in 80-bit registers, so two builds would differ.
// Units:  counts between stages are frames, one sample for each channel.

constexpr int32_t kBlockFrames = 8192;          // the most frames that one call carries
constexpr int32_t kFullScale16 = 0x7FFF0;       // the largest 16-bit sample on this scale
constexpr int32_t kNullSourceLevel = 0x200000;  // four times full scale, 12 dB above it

// From PCM to the 20-bit scale: 16 bits signed, 8 bits unsigned with 128 as zero. Exact.
constexpr int32_t FromPcm16(int16_t v) {
    return static_cast<int32_t>(v) * 16;
}
constexpr int32_t FromPcm8(uint8_t v) {
    return (static_cast<int32_t>(v) - 128) * 4096;
}

// Rounds from the 20-bit scale to 16 bits. A value beyond full scale wraps: limit it first (LSRCPeakLimit).
constexpr int16_t ToPcm16(int32_t v) {
    return static_cast<int16_t>(static_cast<int32_t>(static_cast<uint32_t>(v) + 8u) >> 4);
}
static_assert(ToPcm16(-524288) == -32768 && ToPcm16(0x80000) == -32768);

// Rounds from the 20-bit scale to 8 bits, unsigned. A value beyond full scale wraps. The very top of the
// range (0x7F800 to 0x7FFFF) would round to 256 and wrap to the lowest value, a crack in the listener's ear,
// so it stays at 255.
constexpr uint8_t ToPcm8(int32_t v) {
    if (v >= 0x7F800 && v <= 0x7FFFF) return 255;
    return static_cast<uint8_t>((static_cast<int32_t>(static_cast<uint32_t>(v) + 2048u) >> 12) + 128);
}
static_assert(ToPcm8(0) == 128 && ToPcm8(-524288) == 0 && ToPcm8(0x7F7FF) == 255 && ToPcm8(0x80000) == 0);
