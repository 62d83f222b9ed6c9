#pragma once

#include <cstdint>
#include <span>

#include "base/LLevel.h"

// 0 dB is a peak of 2^17, a quarter of full scale, so that normal speech stands around the middle of a meter;
// full scale is 12 dB.
constexpr int8_t kFullScaleDb = 12;

// The level of a peak magnitude, rounded half away from zero.
int8_t PeakToDb(uint32_t peak);

// The level of one channel of interleaved samples, from their peak.
int8_t ChannelDb(std::span<const int32_t> samples, uint8_t channels, uint8_t channel);

// The same from the root mean square: the level of what is heard, not of its highest point. At most
// kBlockFrames frames, within the range that 16 bits hold. Without samples it is kSilenceDb.
int8_t ChannelRmsDb(std::span<const int32_t> samples, uint8_t channels, uint8_t channel);

// A mixer control's volume, 0 to 65535: 0 below -35 dB, then 1424 for each dB.
constexpr uint32_t MixerVolume(int32_t db) {
    if (db < -35) return 0;
    return db > 10 ? 65535u : static_cast<uint32_t>((db + 36) * 1424);
}
static_assert(MixerVolume(-36) == 0 && MixerVolume(-35) == 1424 && MixerVolume(0) == 51264);
static_assert(MixerVolume(9) == 64080 && MixerVolume(10) == 65504 && MixerVolume(11) == 65535);
