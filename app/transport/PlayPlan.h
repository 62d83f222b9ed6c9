#pragma once

#include <algorithm>
#include <cstdint>

#include "audio/convert/LSpeedSource.h"

// What the transport decides about playing and winding. Units: milliseconds.

enum class PlaySpeed : int32_t { Slow = 0, Normal = 1, Fast = 2 };

constexpr PlaySpeed ToPlaySpeed(int32_t stored) {
    return stored >= 0 && stored <= 2 ? static_cast<PlaySpeed>(stored) : PlaySpeed::Normal;
}
constexpr int32_t SpeedPercent(PlaySpeed speed) {
    return speed == PlaySpeed::Slow   ? LSpeedSource::kSlowPercent
           : speed == PlaySpeed::Fast ? LSpeedSource::kFastPercent
                                      : LSpeedSource::kNormalPercent;
}

enum class WindDirection { Back, Forward };

constexpr double kWindInitialSpeed = 1.5;
constexpr double kWindFinalSpeed = 8.0;
constexpr int32_t kWindRampMs = 6000;

// Rewinding begins half a second earlier, on purpose: the words just before the place are heard again.
// Winding forward begins where it stands.
constexpr int32_t kRewindLeadMs = 500;
constexpr int32_t WindStartMs(int32_t positionMs, WindDirection direction) {
    return std::max(direction == WindDirection::Back ? positionMs - kRewindLeadMs : positionMs, 0);
}

// Play at the end begins again at the start.
constexpr int32_t PlayStartMs(int32_t positionMs, int32_t lengthMs) {
    return positionMs >= lengthMs ? 0 : std::max(positionMs, 0);
}
