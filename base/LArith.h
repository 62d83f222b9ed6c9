#pragma once

#include <cstdint>
#include <limits>

// x * num / den, rounded towards zero, without a 64-bit product: exact while the result and den * num fit in
// 32 bits. Milliseconds to bytes: ScaleInt(positionMs, byteRate, 1000). den is not 0.
constexpr int32_t ScaleInt(int32_t x, int32_t num, int32_t den) {
    return x / den * num + x % den * num / den;
}

// Limits a 64-bit value to the range of 32 bits.
constexpr int32_t Saturate(int64_t v) {
    constexpr int64_t kMin = std::numeric_limits<int32_t>::min();
    constexpr int64_t kMax = std::numeric_limits<int32_t>::max();
    return static_cast<int32_t>(v < kMin ? kMin : v > kMax ? kMax : v);
}

// The value of x, held between low and high (low <= high).
template <class T>
constexpr T Clamp(T x, T low, T high) {
    return x < low ? low : x > high ? high : x;
}

// x rounded up to a multiple of step (step > 0); the caller keeps x far from the top of its range.
template <class T>
constexpr T RoundUp(T x, T step) {
    return (x + step - 1) / step * step;
}
