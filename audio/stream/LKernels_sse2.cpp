// The SSE2 loops. Compiled with the options for SSE2, and with a stack that each function aligns anew, since
// Windows does not keep it aligned to 16 bytes.
#include <emmintrin.h>

#include "audio/stream/LVectorKernels.h"

namespace {

// The operations that LVectorKernels needs, in vectors of four 32-bit lanes.
struct Sse2 {
    using Word = __m128i;
    static constexpr size_t kLanes = 4;
    struct Scope {
        Scope() = default;
    };

    static Word Load(const void* from) { return _mm_loadu_si128(static_cast<const Word*>(from)); }
    static Word LoadAligned(const void* from) { return _mm_load_si128(static_cast<const Word*>(from)); }
    static void Store(void* to, Word v) { _mm_storeu_si128(static_cast<Word*>(to), v); }
    static Word Zero() { return _mm_setzero_si128(); }
    static Word All8(int8_t v) { return _mm_set1_epi8(v); }
    static Word All32(int32_t v) { return _mm_set1_epi32(v); }
    static int32_t First(Word v) { return _mm_cvtsi128_si32(v); }

    static Word Add(Word a, Word b) { return _mm_add_epi32(a, b); }
    static Word Sub(Word a, Word b) { return _mm_sub_epi32(a, b); }
    static Word And(Word a, Word b) { return _mm_and_si128(a, b); }
    static Word Or(Word a, Word b) { return _mm_or_si128(a, b); }
    static Word Xor(Word a, Word b) { return _mm_xor_si128(a, b); }
    static Word AndNot(Word a, Word b) { return _mm_andnot_si128(a, b); }
    static Word Left(Word v, int bits) { return _mm_slli_epi32(v, bits); }
    static Word Right(Word v, int bits) { return _mm_srli_epi32(v, bits); }
    static Word Shift(Word v, int bits) { return _mm_srai_epi32(v, bits); }
    static Word Equal(Word a, Word b) { return _mm_cmpeq_epi32(a, b); }
    static Word Greater(Word a, Word b) { return _mm_cmpgt_epi32(a, b); }

    static Word Low8(Word a, Word b) { return _mm_unpacklo_epi8(a, b); }
    static Word High8(Word a, Word b) { return _mm_unpackhi_epi8(a, b); }
    static Word Low16(Word a, Word b) { return _mm_unpacklo_epi16(a, b); }
    static Word High16(Word a, Word b) { return _mm_unpackhi_epi16(a, b); }
    static Word Low32(Word a, Word b) { return _mm_unpacklo_epi32(a, b); }
    static Word High32(Word a, Word b) { return _mm_unpackhi_epi32(a, b); }
    static Word Pack32(Word a, Word b) { return _mm_packs_epi32(a, b); }
    static Word Pack16(Word a, Word b) { return _mm_packus_epi16(a, b); }
    static Word MultiplyAdd(Word a, Word b) { return _mm_madd_epi16(a, b); }

    using Sums = Word;  // partial sums of the first, second, first and second half
    static Sums Fold(Word first, Word second) { return Add(Low32(first, second), High32(first, second)); }
    struct Places {
        Word firstEven, firstOdd, secondEven, secondOdd;
    };
    template <class Next>
    static Places Gather(const Next& next) {
        const Sums s0 = next(), s1 = next(), s2 = next(), s3 = next();
        const Word low01 = Low32(s0, s1), low23 = Low32(s2, s3);
        const Word high01 = High32(s0, s1), high23 = High32(s2, s3);
        return {_mm_unpacklo_epi64(low01, low23), _mm_unpacklo_epi64(high01, high23),
                _mm_unpackhi_epi64(low01, low23), _mm_unpackhi_epi64(high01, high23)};
    }
};

}  // namespace

const LKernels kSse2Kernels = LVectorKernels<Sse2>::kKernels;
