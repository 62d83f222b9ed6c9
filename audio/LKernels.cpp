#include "audio/LKernels.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "audio/LSample.h"

namespace {

static_assert(std::endian::native == std::endian::little, "16-bit PCM is taken as it stands");

uint32_t Peak(const int32_t* samples, size_t count) {
    uint32_t peak = 0;
    for (size_t i = 0; i < count; ++i) {
        const uint32_t bits = static_cast<uint32_t>(samples[i]);
        peak = std::max(peak, samples[i] < 0 ? 0u - bits : bits);
    }
    return peak;
}

void FromPcm8s(const uint8_t* pcm, int32_t* samples, size_t count) {
    for (size_t i = 0; i < count; ++i) samples[i] = FromPcm8(pcm[i]);
}

void FromPcm16s(const uint8_t* pcm, int32_t* samples, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        int16_t value;
        std::memcpy(&value, pcm + 2 * i, sizeof value);
        samples[i] = FromPcm16(value);
    }
}

void ToPcm8s(const int32_t* samples, uint8_t* pcm, size_t count) {
    for (size_t i = 0; i < count; ++i) pcm[i] = ToPcm8(samples[i]);
}

void ToPcm16s(const int32_t* samples, uint8_t* pcm, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        const int16_t value = ToPcm16(samples[i]);
        std::memcpy(pcm + 2 * i, &value, sizeof value);
    }
}

void RampMono(LGainRamp ramp, const int32_t* in, int32_t* out, size_t frames) {
    for (size_t i = 0; i < frames; ++i, ramp.gain += ramp.step)
        out[i] = std::max(TimesGain(in[i], ramp.gain), ramp.lowest);
}

void RampStereo(LGainRamp ramp, const int32_t* in, int32_t* out, size_t frames) {
    for (size_t i = 0; i < frames; ++i, ramp.gain += ramp.step) {
        out[2 * i] = std::max(TimesGain(in[2 * i], ramp.gain), ramp.lowest);
        out[2 * i + 1] = std::max(TimesGain(in[2 * i + 1], ramp.gain), ramp.lowest);
    }
}

void RampOthers(LGainRamp ramp, const int32_t* in, int32_t* out, size_t frames, size_t channels) {
    for (size_t i = 0; i < frames; ++i, ramp.gain += ramp.step)
        for (size_t c = 0; c < channels; ++c, ++in, ++out)
            *out = std::max(TimesGain(*in, ramp.gain), ramp.lowest);
}

void Ramp(const LGainRamp& ramp, const int32_t* in, int32_t* out, size_t frames, size_t channels) {
    if (channels == 1) return RampMono(ramp, in, out, frames);
    if (channels == 2) return RampStereo(ramp, in, out, frames);
    RampOthers(ramp, in, out, frames, channels);
}

const LKernels& Choose() {
    __builtin_cpu_init();
    return __builtin_cpu_supports("sse2") ? kSse2Kernels : kPlainKernels;
}

}  // namespace

const LKernels kPlainKernels = {Peak, FromPcm8s, FromPcm16s, ToPcm8s, ToPcm16s, Ramp};

const LKernels& Kernels() {
    static const LKernels& chosen = Choose();
    return chosen;
}
