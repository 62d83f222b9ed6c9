// Compiled for SSE2, and with a stack that is aligned anew, since Windows does not keep it aligned to 16
// bytes.
#include <emmintrin.h>

#include <algorithm>

#include "audio/stream/LKernels.h"

namespace {

__m128i Load(const void* from) {
    return _mm_loadu_si128(static_cast<const __m128i*>(from));
}

void Store(void* to, __m128i v) {
    _mm_storeu_si128(static_cast<__m128i*>(to), v);
}

__m128i Larger(__m128i a, __m128i b) {
    const __m128i greater = _mm_cmpgt_epi32(a, b);
    return _mm_or_si128(_mm_and_si128(greater, a), _mm_andnot_si128(greater, b));
}

uint32_t Peak(const int32_t* samples, size_t count) {
    // Unsigned comparison of magnitudes: SSE2 compares signed, so both sides are shifted down by 2^31.
    const __m128i bias = _mm_set1_epi32(INT32_MIN);
    __m128i peaks = bias;
    size_t i = 0;
    for (; i + 4 <= count; i += 4) {
        const __m128i v = Load(samples + i);
        const __m128i sign = _mm_srai_epi32(v, 31);
        const __m128i magnitude = _mm_sub_epi32(_mm_xor_si128(v, sign), sign);
        peaks = Larger(_mm_xor_si128(magnitude, bias), peaks);
    }
    peaks = Larger(peaks, _mm_shuffle_epi32(peaks, _MM_SHUFFLE(1, 0, 3, 2)));
    peaks = Larger(peaks, _mm_shuffle_epi32(peaks, _MM_SHUFFLE(2, 3, 0, 1)));
    const uint32_t peak = static_cast<uint32_t>(_mm_cvtsi128_si32(_mm_xor_si128(peaks, bias)));
    return i == count ? peak : std::max(peak, kPlainKernels.peak(samples + i, count - i));
}

// Each PCM sample goes to the top of its 32 bits; the shift back down extends the sign.
void FromPcm8s(const uint8_t* pcm, int32_t* samples, size_t count) {
    const __m128i zero = _mm_setzero_si128();
    size_t i = 0;
    for (; i + 16 <= count; i += 16) {
        const __m128i v = _mm_xor_si128(Load(pcm + i), _mm_set1_epi8(INT8_MIN));
        const __m128i low = _mm_unpacklo_epi8(zero, v), high = _mm_unpackhi_epi8(zero, v);
        Store(samples + i, _mm_srai_epi32(_mm_unpacklo_epi16(zero, low), 12));
        Store(samples + i + 4, _mm_srai_epi32(_mm_unpackhi_epi16(zero, low), 12));
        Store(samples + i + 8, _mm_srai_epi32(_mm_unpacklo_epi16(zero, high), 12));
        Store(samples + i + 12, _mm_srai_epi32(_mm_unpackhi_epi16(zero, high), 12));
    }
    kPlainKernels.fromPcm8(pcm + i, samples + i, count - i);
}

void FromPcm16s(const uint8_t* pcm, int32_t* samples, size_t count) {
    const __m128i zero = _mm_setzero_si128();
    size_t i = 0;
    for (; i + 8 <= count; i += 8) {
        const __m128i v = Load(pcm + 2 * i);
        Store(samples + i, _mm_srai_epi32(_mm_unpacklo_epi16(zero, v), 12));
        Store(samples + i + 4, _mm_srai_epi32(_mm_unpackhi_epi16(zero, v), 12));
    }
    kPlainKernels.fromPcm16(pcm + 2 * i, samples + i, count - i);
}

// Four samples as bytes, each in 32 bits. What lies from 0x7F800 to 0x7FFFF rounds to 0 and is taken one
// down, to 255.
__m128i Bytes(__m128i v) {
    const __m128i top = _mm_cmpeq_epi32(_mm_srai_epi32(v, 11), _mm_set1_epi32(0xFF));
    const __m128i rounded = _mm_srai_epi32(_mm_add_epi32(v, _mm_set1_epi32(2048)), 12);
    const __m128i byte = _mm_add_epi32(_mm_add_epi32(rounded, _mm_set1_epi32(128)), top);
    return _mm_and_si128(byte, _mm_set1_epi32(0xFF));
}

void ToPcm8s(const int32_t* samples, uint8_t* pcm, size_t count) {
    size_t i = 0;
    for (; i + 16 <= count; i += 16) {
        const __m128i low = _mm_packs_epi32(Bytes(Load(samples + i)), Bytes(Load(samples + i + 4)));
        const __m128i high = _mm_packs_epi32(Bytes(Load(samples + i + 8)), Bytes(Load(samples + i + 12)));
        Store(pcm + i, _mm_packus_epi16(low, high));
    }
    kPlainKernels.toPcm8(samples + i, pcm + i, count - i);
}

// Four samples rounded and wrapped to 16 bits, so that packing finds nothing to saturate.
__m128i Words(__m128i v) {
    return _mm_srai_epi32(_mm_slli_epi32(_mm_add_epi32(v, _mm_set1_epi32(8)), 12), 16);
}

void ToPcm16s(const int32_t* samples, uint8_t* pcm, size_t count) {
    size_t i = 0;
    for (; i + 8 <= count; i += 8)
        Store(pcm + 2 * i, _mm_packs_epi32(Words(Load(samples + i)), Words(Load(samples + i + 4))));
    kPlainKernels.toPcm16(samples + i, pcm + 2 * i, count - i);
}

// The product in halves of 12 bits, from multiplications of 16 bits. The high half of a value, up to 20 bits,
// is split once more into a * 2^12 + b; with the low half c, and the gain's halves H and L, the product
// (a * 2^12 + b) * H + (((a * 2^12 + b) * L + c * H) >> 12) is a * H * 2^12 + (b * H + a * L) +
// ((b * L + c * H) >> 12).
__m128i Multiply(__m128i v, __m128i gain) {
    const __m128i mask = _mm_set1_epi32(0xFFF), upper = _mm_set1_epi32(-0x10000);
    const __m128i gainHigh = _mm_srli_epi32(gain, 12);
    const __m128i gains = _mm_or_si128(gainHigh, _mm_slli_epi32(_mm_and_si128(gain, mask), 16));
    const __m128i a = _mm_and_si128(_mm_srai_epi32(v, 8), upper);
    const __m128i b = _mm_and_si128(_mm_srli_epi32(v, 12), mask);
    const __m128i c = _mm_and_si128(v, mask);
    const __m128i ab = _mm_madd_epi16(_mm_or_si128(b, a), gains);
    const __m128i bc = _mm_madd_epi16(_mm_or_si128(c, _mm_slli_epi32(b, 16)), gains);
    const __m128i aHigh = _mm_madd_epi16(_mm_srli_epi32(a, 16), gainHigh);
    return _mm_add_epi32(_mm_add_epi32(_mm_slli_epi32(aHigh, 12), ab), _mm_srli_epi32(bc, 12));
}

// kChannels of 1 or 2: four values are four frames or two.
template <int kChannels>
void RampOf(const LGainRamp& ramp, const int32_t* in, int32_t* out, size_t frames) {
    constexpr size_t kFrames = 4 / kChannels;
    const auto gainOf = [&](int value) { return ramp.gain + ramp.step * (value / kChannels); };
    const __m128i lowest = _mm_set1_epi32(ramp.lowest);
    const __m128i step = _mm_set1_epi32(ramp.step * static_cast<int32_t>(kFrames));
    __m128i gain = _mm_setr_epi32(gainOf(0), gainOf(1), gainOf(2), gainOf(3));
    size_t i = 0;
    for (; i + kFrames <= frames; i += kFrames) {
        Store(out + i * kChannels, Larger(Multiply(Load(in + i * kChannels), gain), lowest));
        gain = _mm_add_epi32(gain, step);
    }
    const LGainRamp rest = {_mm_cvtsi128_si32(gain), ramp.step, ramp.lowest};
    kPlainKernels.ramp(rest, in + i * kChannels, out + i * kChannels, frames - i, kChannels);
}

void Ramp(const LGainRamp& ramp, const int32_t* in, int32_t* out, size_t frames, size_t channels) {
    if (channels == 1) return RampOf<1>(ramp, in, out, frames);
    if (channels == 2) return RampOf<2>(ramp, in, out, frames);
    kPlainKernels.ramp(ramp, in, out, frames, channels);
}

void Narrow(const int32_t* samples, int16_t* narrowed, size_t count) {
    // (v >> 4) + (v >> 3 & 1) is (v + 8) >> 4 without overflow.
    const auto rounded = [](__m128i v) {
        return _mm_add_epi32(_mm_srai_epi32(v, 4), _mm_srli_epi32(_mm_slli_epi32(v, 28), 31));
    };
    size_t i = 0;
    for (; i + 8 <= count; i += 8) {
        const __m128i packed = _mm_packs_epi32(rounded(Load(samples + i)), rounded(Load(samples + i + 4)));
        Store(narrowed + i, packed);
    }
    kPlainKernels.narrow(samples + i, narrowed + i, count - i);
}

// The sums of one sample's two halves, each as two partial sums, of which none exceeds 32 bits for any input:
// first, second, first, second.
template <size_t kHalf>
__m128i SumHalves(const int16_t* history, const int16_t* row) {
    const auto product = [](const int16_t* samples, const int16_t* coefficients) {
        return _mm_madd_epi16(Load(samples), _mm_load_si128(reinterpret_cast<const __m128i*>(coefficients)));
    };
    __m128i first = product(history + 1, row), second = product(history + kHalf - 1, row + kHalf);
#pragma GCC unroll 4
    for (size_t i = 8; i < kHalf; i += 8) {
        first = _mm_add_epi32(first, product(history + 1 + i, row + i));
        second = _mm_add_epi32(second, product(history + kHalf - 1 + i, row + kHalf + i));
    }
    return _mm_add_epi32(_mm_unpacklo_epi32(first, second), _mm_unpackhi_epi32(first, second));
}

// (a + b) >> 1 without its sum.
__m128i Halved(__m128i a, __m128i b) {
    const __m128i carry = _mm_and_si128(_mm_and_si128(a, b), _mm_set1_epi32(1));
    return _mm_add_epi32(_mm_add_epi32(_mm_srai_epi32(a, 1), _mm_srai_epi32(b, 1)), carry);
}

// Four samples from the sums of each.
__m128i Finish(__m128i s0, __m128i s1, __m128i s2, __m128i s3) {
    const __m128i low01 = _mm_unpacklo_epi32(s0, s1), low23 = _mm_unpacklo_epi32(s2, s3);
    const __m128i high01 = _mm_unpackhi_epi32(s0, s1), high23 = _mm_unpackhi_epi32(s2, s3);
    const __m128i first = Halved(_mm_unpacklo_epi64(low01, low23), _mm_unpacklo_epi64(high01, high23));
    const __m128i second = Halved(_mm_unpackhi_epi64(low01, low23), _mm_unpackhi_epi64(high01, high23));
    // (first + second + 1024) >> 11 without its sum.
    const __m128i mask = _mm_set1_epi32(2047);
    const __m128i rest = _mm_add_epi32(_mm_and_si128(first, mask), _mm_and_si128(second, mask));
    const __m128i carry = _mm_srli_epi32(_mm_add_epi32(rest, _mm_set1_epi32(1024)), 11);
    return _mm_add_epi32(_mm_add_epi32(_mm_srai_epi32(first, 11), _mm_srai_epi32(second, 11)), carry);
}

template <size_t kHalf>
void InterpolateBy(const LSincRows& rows, uint32_t phase, const int16_t* history, int32_t* out, size_t count,
                   size_t stride) {
    const uint32_t whole = rows.step / rows.phases, part = rows.step % rows.phases;
    size_t at = 0;
    const auto next = [&] {
        const __m128i sums = SumHalves<kHalf>(history + at, rows.rows + size_t{phase} * (2 * kHalf));
        phase += part;
        // Without a jump, which the processor would often foretell wrongly.
        const uint32_t less = phase - rows.phases, carries = (less >> 31) ^ 1;
        at += whole + carries;
        phase = less + (rows.phases & (carries - 1));
        return sums;
    };
    for (; count >= 4; count -= 4, out += 4 * stride) {
        const __m128i s0 = next(), s1 = next(), s2 = next(), s3 = next();
        const __m128i samples = Finish(s0, s1, s2, s3);
        if (stride == 1) {
            Store(out, samples);
        } else {
            alignas(16) int32_t lanes[4];
            _mm_store_si128(reinterpret_cast<__m128i*>(lanes), samples);
            for (size_t i = 0; i < 4; ++i) out[i * stride] = lanes[i];
        }
    }
    if (count > 0) kPlainKernels.interpolate(rows, phase, history + at, out, count, stride);
}

void Interpolate(const LSincRows& rows, uint32_t phase, const int16_t* history, int32_t* out, size_t count,
                 size_t stride) {
    if (rows.half == 32)
        InterpolateBy<32>(rows, phase, history, out, count, stride);
    else
        InterpolateBy<8>(rows, phase, history, out, count, stride);
}

}  // namespace

const LKernels kSse2Kernels = {Peak, FromPcm8s, FromPcm16s, ToPcm8s, ToPcm16s, Ramp, Narrow, Interpolate};
