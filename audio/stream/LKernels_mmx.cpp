// The MMX loops. Compiled with the options for MMX and nothing newer.
#include <mmintrin.h>

#include <cstring>

#include "audio/stream/LVectorKernels.h"

namespace {

// The operations that LVectorKernels needs, in vectors of two 32-bit lanes.
struct Mmx {
    using Word = __m64;
    static constexpr size_t kLanes = 2;
    // MMX shares its registers with the floating-point unit. They are emptied at the end of each loop, so
    // that the next floating-point operation finds them free.
    struct Scope {
        Scope() = default;
        ~Scope() { _mm_empty(); }
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;
    };

    static Word Load(const void* from) {
        Word v;
        std::memcpy(&v, from, sizeof v);
        return v;
    }
    static Word LoadAligned(const void* from) { return *static_cast<const Word*>(from); }
    static void Store(void* to, Word v) { std::memcpy(to, &v, sizeof v); }
    static Word Zero() { return _mm_setzero_si64(); }
    static Word All8(int8_t v) { return _mm_set1_pi8(v); }
    static Word All32(int32_t v) { return _mm_set1_pi32(v); }
    static int32_t First(Word v) { return _mm_cvtsi64_si32(v); }

    static Word Add(Word a, Word b) { return _mm_add_pi32(a, b); }
    static Word Sub(Word a, Word b) { return _mm_sub_pi32(a, b); }
    static Word And(Word a, Word b) { return _mm_and_si64(a, b); }
    static Word Or(Word a, Word b) { return _mm_or_si64(a, b); }
    static Word Xor(Word a, Word b) { return _mm_xor_si64(a, b); }
    static Word AndNot(Word a, Word b) { return _mm_andnot_si64(a, b); }
    static Word Left(Word v, int bits) { return _mm_slli_pi32(v, bits); }
    static Word Right(Word v, int bits) { return _mm_srli_pi32(v, bits); }
    static Word Shift(Word v, int bits) { return _mm_srai_pi32(v, bits); }
    static Word Equal(Word a, Word b) { return _mm_cmpeq_pi32(a, b); }
    static Word Greater(Word a, Word b) { return _mm_cmpgt_pi32(a, b); }

    static Word Low8(Word a, Word b) { return _mm_unpacklo_pi8(a, b); }
    static Word High8(Word a, Word b) { return _mm_unpackhi_pi8(a, b); }
    static Word Low16(Word a, Word b) { return _mm_unpacklo_pi16(a, b); }
    static Word High16(Word a, Word b) { return _mm_unpackhi_pi16(a, b); }
    static Word Low32(Word a, Word b) { return _mm_unpacklo_pi32(a, b); }
    static Word High32(Word a, Word b) { return _mm_unpackhi_pi32(a, b); }
    static Word Pack32(Word a, Word b) { return _mm_packs_pi32(a, b); }
    static Word Pack16(Word a, Word b) { return _mm_packs_pu16(a, b); }
    static Word MultiplyAdd(Word a, Word b) { return _mm_madd_pi16(a, b); }

    struct Sums {
        Word first, second;
    };
    static Sums Fold(Word first, Word second) { return {first, second}; }
    struct Places {
        Word firstEven, firstOdd, secondEven, secondOdd;
    };
    template <class Next>
    static Places Gather(const Next& next) {
        const Sums a = next(), b = next();
        return {Low32(a.first, b.first), High32(a.first, b.first), Low32(a.second, b.second),
                High32(a.second, b.second)};
    }
};

// Two loops stay plain: in two lanes they take more steps than the plain loops take in one register.
uint32_t Peak(const int32_t* samples, size_t count) {
    return kPlainKernels.peak(samples, count);
}

void Ramp(const LGainRamp& ramp, const int32_t* in, int32_t* out, size_t frames, size_t channels) {
    kPlainKernels.ramp(ramp, in, out, frames, channels);
}

constexpr LKernels Choose() {
    LKernels kernels = LVectorKernels<Mmx>::kKernels;
    kernels.peak = Peak;
    kernels.ramp = Ramp;
    return kernels;
}

}  // namespace

constinit const LKernels kMmxKernels = Choose();
