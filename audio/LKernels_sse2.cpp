// Compiled for SSE2, and with a stack that is aligned anew, since Windows does not keep it aligned to 16
// bytes.
#include <emmintrin.h>

#include <algorithm>

#include "audio/LKernels.h"

namespace {

uint32_t Peak(const int32_t* samples, size_t count) {
    // Unsigned comparison of magnitudes: SSE2 compares signed, so both sides are shifted down by 2^31.
    const __m128i bias = _mm_set1_epi32(INT32_MIN);
    __m128i peaks = bias;
    size_t i = 0;
    for (; i + 4 <= count; i += 4) {
        const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(samples + i));
        const __m128i sign = _mm_srai_epi32(v, 31);
        const __m128i magnitude = _mm_sub_epi32(_mm_xor_si128(v, sign), sign);
        const __m128i biased = _mm_xor_si128(magnitude, bias);
        const __m128i greater = _mm_cmpgt_epi32(biased, peaks);
        peaks = _mm_or_si128(_mm_and_si128(greater, biased), _mm_andnot_si128(greater, peaks));
    }
    alignas(16) uint32_t lanes[4];
    _mm_store_si128(reinterpret_cast<__m128i*>(lanes), _mm_xor_si128(peaks, bias));
    const uint32_t peak = std::max(std::max(lanes[0], lanes[1]), std::max(lanes[2], lanes[3]));
    return std::max(peak, kPlainKernels.peak(samples + i, count - i));
}

}  // namespace

const LKernels kSse2Kernels = {Peak};
