#pragma once

#include <cstdint>
#include <span>

#include "base/LLevel.h"

// Levels in decibels, for meters, the voice gate and the mixer. 0 dB is a peak of 2^17, a quarter of full
// scale (2^19): normal speech then stands around the middle of a meter. Full scale is 12 dB.
// Units:  samples as in LSample.h; a level is a signed byte, -127 (no signal) to 127 dB.
// Thread: any; pure functions.
constexpr int8_t kFullScaleDb = 12;

// 20 * log10(peak / 2^17), rounded half away from zero; kSilenceDb for a peak of 0.
int8_t PeakToDb(uint32_t peak);

// The level of one channel of interleaved samples, from their peak.
int8_t ChannelDb(std::span<const int32_t> samples, uint8_t channels, uint8_t channel);

// The level of one channel from its root mean square, which follows loudness better than the peak does. A
// sine reads the same by both functions. At most kBlockFrames frames, of samples within 16-bit full scale;
// kSilenceDb without samples.
int8_t ChannelRmsDb(std::span<const int32_t> samples, uint8_t channels, uint8_t channel);

// The volume of a mixer control, 0 to 65535, for a level. The range from -35 to 10 dB is laid over the
// control evenly, 1424 steps for each dB (46 * 1424 is just within 65535); below it the control is at 0,
// above it at 65535.
constexpr uint32_t MixerVolume(int32_t db) {
    if (db < -35) return 0;
    return db > 10 ? 65535u : static_cast<uint32_t>((db + 36) * 1424);
}
static_assert(MixerVolume(-36) == 0 && MixerVolume(-35) == 1424 && MixerVolume(0) == 51264);
static_assert(MixerVolume(9) == 64080 && MixerVolume(10) == 65504 && MixerVolume(11) == 65535);
