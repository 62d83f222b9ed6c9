#include "audio/mp3/MP3Kernels.h"

#include <bit>

#include "audio/mp3/MP3Loops.h"
#include "base/LProcessor.h"

namespace {

// A "vector" of one float.
struct Plain {
    using V = float;
    static constexpr size_t kLanes = 1;

    static V Load(const float* from) { return *from; }
    static void Store(float* to, V v) { *to = v; }
    static V Reversed(V v) { return v; }

    template <size_t kColumns>
    static void LoadColumns(const float* row, size_t, V* columns) {
        for (size_t i = 0; i < kColumns; ++i) columns[i] = row[i];
    }
    static void StoreColumns(const V* column, float* const* rows, size_t at) { rows[0][at] = *column; }

    // Rounds by an addition that leaves the whole number in the low bits. A conversion would change the mode
    // of the floating-point unit and back, which takes longer than the sample.
    static int32_t Sample(V v) {
        constexpr float kLimit = kMP3Level;
        const float held = v > kLimit ? kLimit : v < -kLimit ? -kLimit : v;
        const volatile double rounded = static_cast<double>(held) + 6755399441055744.0;  // 1.5 * 2^52
        return static_cast<int32_t>(std::bit_cast<int64_t>(double{rounded}));
    }
    template <size_t kChannels>
    static void Output(const V* forward, const V* mirrored, size_t j, int32_t* samples) {
        for (size_t c = 0; c < kChannels; ++c) {
            samples[j * kChannels + c] = Sample(forward[c]);
            samples[(j == 0 ? 16 : 32 - j) * kChannels + c] = Sample(mirrored[c]);
        }
    }
};

const MP3Kernels& Choose() {
    __builtin_cpu_init();
    const bool hasSse2 = __builtin_cpu_supports("sse2") && LPlatformSavesSse();
    return hasSse2 ? kSse2MP3Kernels : kPlainMP3Kernels;
}

}  // namespace

const MP3Kernels kPlainMP3Kernels = MP3Loops<Plain>::kKernels;

const MP3Kernels& GetMP3Kernels() {
    static const MP3Kernels& chosen = Choose();
    return chosen;
}
