#include "audio/stream/LDecibel.h"

#include <algorithm>
#include <cmath>

#include "audio/stream/LKernels.h"

static int8_t ToLevel(double db) {
    return static_cast<int8_t>(std::clamp<long>(std::lround(db), kSilenceDb, kMaxDb));
}

int8_t PeakToDb(uint32_t peak) {
    if (peak == 0) return kSilenceDb;
    return ToLevel(20.0 * std::log10(std::ldexp(static_cast<double>(peak), -17)));
}

int8_t ChannelDb(std::span<const int32_t> samples, uint8_t channels, uint8_t channel) {
    if (channels == 1) return PeakToDb(Kernels().peak(samples.data(), samples.size()));
    uint32_t peak = 0;
    for (size_t i = channel; i < samples.size(); i += channels)
        peak = std::max(peak, kPlainKernels.peak(&samples[i], 1));
    return PeakToDb(peak);
}

int8_t ChannelRmsDb(std::span<const int32_t> samples, uint8_t channels, uint8_t channel) {
    // The inverse of the mean square at 0 dB: that of a sine with a peak of 2^17, which is 2^12 after the
    // shift by 5 bits below, so 2^24 / 2.
    static constexpr double kMeanOfZeroDb = 1.1920903e-7;
    // The sum of the squares, split so that integers of 32 bits suffice: a square has at most 29 bits, so
    // 8192 of them would need 42. The low 13 bits and the rest are summed apart.
    uint32_t low = 0;
    uint32_t high = 0;
    uint32_t count = 0;
    for (size_t i = channel; i < samples.size(); i += channels, ++count) {
        const uint32_t value = static_cast<uint32_t>(samples[i] >> 5);
        const uint32_t square = value * value;  // right for a negative value too
        low += square & 0x1FFF;
        high += square >> 13;
    }
    if (low == 0 && high == 0) return kSilenceDb;
    const double mean = (static_cast<double>(high) * 8192.0 + low) / count;
    return ToLevel(10.0 * std::log10(mean * kMeanOfZeroDb));
}
