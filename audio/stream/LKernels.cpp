#include "audio/stream/LKernels.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "audio/stream/LSample.h"
#include "base/LProcessor.h"

// The plain loops, and the choice between the three versions. The plain ones define the result: the vector
// loops (LVectorKernels.h) match them to the bit and call them for the samples that fill no whole vector.
// A build for SSE2 alone was rejected, since the program runs on processors from the first Pentium on; a
// build for the oldest processor alone would leave most of a newer one unused. The choice asks the platform
// as well as the processor: Windows 95 does not save the SSE registers when it changes threads, so two
// threads that use them would spoil each other's sound. It gets the MMX loops, whose registers it saves.

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

void Narrow(const int32_t* samples, int16_t* narrowed, size_t count) {
    for (size_t i = 0; i < count; ++i)
        narrowed[i] = static_cast<int16_t>((std::clamp(samples[i], -0x80000, 0x7FFF0) + 8) >> 4);
}

// The dot product of one half of a row, as the sums of its even and of its odd slots. For the worst of inputs
// a half may exceed 32 bits, but neither of the two sums does.
struct HalfSum {
    int32_t even;
    int32_t odd;
    // (even + odd) >> 1, without forming the sum.
    int32_t Halved() const { return (even >> 1) + (odd >> 1) + (even & odd & 1); }
};

template <size_t kHalf>
HalfSum SumHalf(const int16_t* history, const int16_t* row) {
    HalfSum sum{0, 0};
#pragma GCC unroll 16  // takes a third off the time of the 32-bit build
    for (size_t i = 0; i < kHalf; i += 2) {
        sum.even += history[i] * row[i];
        sum.odd += history[i + 1] * row[i + 1];
    }
    return sum;
}

// (a + b + 1024) >> 11, without forming a + b, which may exceed 32 bits.
int32_t Round(int32_t a, int32_t b) {
    return (a >> 11) + (b >> 11) + (((a & 2047) + (b & 2047) + 1024) >> 11);
}

template <size_t kHalf>
void InterpolateBy(const LSincRows& rows, uint32_t phase, const int16_t* history, int32_t* out, size_t count,
                   size_t stride) {
    const uint32_t whole = rows.step / rows.phases, part = rows.step % rows.phases;
    size_t at = 0;
    for (; count > 0; --count, out += stride) {
        const int16_t* row = rows.rows + size_t{phase} * (2 * kHalf);
        *out = Round(SumHalf<kHalf>(history + at + 1, row).Halved(),
                     SumHalf<kHalf>(history + at + kHalf - 1, row + kHalf).Halved());
        phase += part;
        const bool carries = phase >= rows.phases;
        at += whole + (carries ? 1 : 0);
        if (carries) phase -= rows.phases;
    }
}

void Interpolate(const LSincRows& rows, uint32_t phase, const int16_t* history, int32_t* out, size_t count,
                 size_t stride) {
    if (rows.half == 32)
        InterpolateBy<32>(rows, phase, history, out, count, stride);
    else
        InterpolateBy<8>(rows, phase, history, out, count, stride);
}

// Both halves of the SSE2 test are needed: the processor has the registers, the platform saves them.
const LKernels& Choose() {
    __builtin_cpu_init();
    if (__builtin_cpu_supports("sse2") && LPlatformSavesSse()) return kSse2Kernels;
    return __builtin_cpu_supports("mmx") ? kMmxKernels : kPlainKernels;
}

}  // namespace

const LKernels kPlainKernels = {Peak, FromPcm8s, FromPcm16s, ToPcm8s, ToPcm16s, Ramp, Narrow, Interpolate};

const LKernels& Kernels() {
    static const LKernels& chosen = Choose();
    return chosen;
}
