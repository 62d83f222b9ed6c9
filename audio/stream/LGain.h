#pragma once

#include <cstdint>

// A gain is a fixed-point fraction of 24 bits, from 0 to kUnityGain, which is 1.0.
constexpr int32_t kUnityGain = 0x1000000;

// A value times a gain, in halves of 12 bits: high times high, plus the two cross products shifted right by
// 12. Only the low halves are unsigned. The product of the low halves is left out, so the result is at most 2
// below the true product and never above it; a gain of 1.0 or 0 is exact.
// No step leaves 32 bits for a value within +-2^30, nor for any value whose product is within +-2^22: from
// 2^30 on its gain is then at most 2^16, and the cross products sum up to less than 2^31 - 2^18.
constexpr int32_t TimesGain(int32_t value, int32_t gain) {
    const int32_t high = value >> 12, low = value & 0xFFF;
    const int32_t gainHigh = gain >> 12, gainLow = gain & 0xFFF;
    return high * gainHigh + ((high * gainLow + low * gainHigh) >> 12);
}
