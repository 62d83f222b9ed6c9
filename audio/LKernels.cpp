#include "audio/LKernels.h"

#include <algorithm>

namespace {

uint32_t Peak(const int32_t* samples, size_t count) {
    uint32_t peak = 0;
    for (size_t i = 0; i < count; ++i) {
        const uint32_t bits = static_cast<uint32_t>(samples[i]);
        peak = std::max(peak, samples[i] < 0 ? 0u - bits : bits);
    }
    return peak;
}

const LKernels& Choose() {
    __builtin_cpu_init();
    return __builtin_cpu_supports("sse2") ? kSse2Kernels : kPlainKernels;
}

}  // namespace

const LKernels kPlainKernels = {Peak};

const LKernels& Kernels() {
    static const LKernels& chosen = Choose();
    return chosen;
}
