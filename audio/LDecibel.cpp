#include "audio/LDecibel.h"

#include <algorithm>
#include <cmath>

#include "audio/LKernels.h"

int8_t PeakToDb(uint32_t peak) {
    if (peak == 0) return kSilenceDb;
    const long db = std::lround(20.0 * std::log10(std::ldexp(static_cast<double>(peak), -17)));
    return static_cast<int8_t>(std::clamp<long>(db, kSilenceDb, kMaxDb));
}

int8_t ChannelDb(std::span<const int32_t> samples, uint8_t channels, uint8_t channel) {
    if (channels == 1) return PeakToDb(Kernels().peak(samples.data(), samples.size()));
    uint32_t peak = 0;
    for (size_t i = channel; i < samples.size(); i += channels)
        peak = std::max(peak, kPlainKernels.peak(&samples[i], 1));
    return PeakToDb(peak);
}
