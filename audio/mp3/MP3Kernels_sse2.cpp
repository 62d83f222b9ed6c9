// The SSE2 loops. Compiled with the options for SSE2, and with a stack that each function aligns anew, since
// Windows does not keep it aligned to 16 bytes.
#include <emmintrin.h>

#include "audio/mp3/MP3Loops.h"

namespace {

struct Sse2 {
    using V = __m128;
    static constexpr size_t kLanes = 4;

    static V Load(const float* from) { return _mm_loadu_ps(from); }
    static void Store(float* to, V v) { _mm_storeu_ps(to, v); }
    static V Reversed(V v) { return _mm_shuffle_ps(v, v, _MM_SHUFFLE(0, 1, 2, 3)); }

    template <size_t kColumns>
    static void LoadColumns(const float* row, size_t stride, V* columns) {
        const float *r1 = row + stride, *r2 = r1 + stride, *r3 = r2 + stride;
        constexpr size_t kFours = kColumns / 4 * 4;
        for (size_t i = 0; i < kFours; i += 4) {
            V a = Load(row + i), b = Load(r1 + i), c = Load(r2 + i), d = Load(r3 + i);
            _MM_TRANSPOSE4_PS(a, b, c, d);
            columns[i] = a, columns[i + 1] = b, columns[i + 2] = c, columns[i + 3] = d;
        }
        if constexpr (kFours + 2 == kColumns) {
            const V ab = Pairs(row + kFours, r1 + kFours), cd = Pairs(r2 + kFours, r3 + kFours);
            columns[kFours] = _mm_shuffle_ps(ab, cd, _MM_SHUFFLE(2, 0, 2, 0));
            columns[kFours + 1] = _mm_shuffle_ps(ab, cd, _MM_SHUFFLE(3, 1, 3, 1));
        }
    }
    static V Pairs(const float* low, const float* high) {
        const V v = _mm_loadl_pi(_mm_setzero_ps(), reinterpret_cast<const __m64*>(low));
        return _mm_loadh_pi(v, reinterpret_cast<const __m64*>(high));
    }
    static void StoreColumns(const V* columns, float* const* rows, size_t at) {
        V a = columns[0], b = columns[1], c = columns[2], d = columns[3];
        _MM_TRANSPOSE4_PS(a, b, c, d);
        Store(rows[0] + at, a), Store(rows[1] + at, b), Store(rows[2] + at, c), Store(rows[3] + at, d);
    }

    static __m128i Samples(V v) {
        const V limit = _mm_set1_ps(static_cast<float>(kMP3Level));
        return _mm_cvtps_epi32(_mm_max_ps(_mm_min_ps(v, limit), limit * -1.0f));
    }
    static void Put(int32_t* to, __m128i v) { _mm_storeu_si128(reinterpret_cast<__m128i*>(to), v); }

    template <size_t kChannels>
    static void Output(const V* forward, const V* mirrored, size_t j, int32_t* samples) {
        const __m128i f = Samples(forward[0]), m = Samples(Reversed(mirrored[0]));
        if constexpr (kChannels == 1) {
            Put(samples + j, f);
            if (j == 0) samples[16] = _mm_cvtsi128_si32(_mm_shuffle_epi32(m, 3));
            PutMirrored(samples + 29 - j, m, j == 0);
        } else {
            const __m128i f1 = Samples(forward[1]), m1 = Samples(Reversed(mirrored[1]));
            Put(samples + 2 * j, _mm_unpacklo_epi32(f, f1));
            Put(samples + 2 * j + 4, _mm_unpackhi_epi32(f, f1));
            const __m128i low = _mm_unpacklo_epi32(m, m1), high = _mm_unpackhi_epi32(m, m1);
            Put(samples + 2 * (29 - j), low);
            int32_t* end = samples + 2 * (31 - j);
            if (j > 0) {
                Put(end, high);
            } else {  // the last lane is the sample in the middle
                _mm_storel_epi64(reinterpret_cast<__m128i*>(end), high);
                _mm_storel_epi64(reinterpret_cast<__m128i*>(samples + 32), _mm_unpackhi_epi64(high, high));
            }
        }
    }
    static void PutMirrored(int32_t* to, __m128i v, bool isFirst) {
        if (!isFirst) return Put(to, v);
        _mm_storel_epi64(reinterpret_cast<__m128i*>(to), v);
        to[2] = _mm_cvtsi128_si32(_mm_shuffle_epi32(v, 2));
    }
};

}  // namespace

const MP3Kernels kSse2MP3Kernels = MP3Loops<Sse2>::kKernels;
