#pragma once

#include <algorithm>
#include <cstdint>

#include "audio/convert/LSpeedSource.h"

// Rules of the transport for playing and winding.
// Units:  milliseconds of the dictation; speeds as factors of normal speed.

// The stored values of the setting "playspeed".
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

// Winding starts at 1.5 times normal speed and reaches 8 times after six seconds.
constexpr double kWindInitialSpeed = 1.5;
constexpr double kWindFinalSpeed = 8.0;
constexpr int32_t kWindRampMs = 6000;

// Rewinding starts half a second before the position, on purpose: the words just before it are heard again.
// Winding forward starts at the position.
constexpr int32_t kRewindLeadMs = 500;
constexpr int32_t WindStartMs(int32_t positionMs, WindDirection direction) {
    return std::max(direction == WindDirection::Back ? positionMs - kRewindLeadMs : positionMs, 0);
}

// Play at the end of a dictation starts again at its beginning.
constexpr int32_t PlayStartMs(int32_t positionMs, int32_t lengthMs) {
    return positionMs >= lengthMs ? 0 : std::max(positionMs, 0);
}
