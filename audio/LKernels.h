#pragma once

#include <cstddef>
#include <cstdint>

// The loops that every sample passes, in a version for any processor and in one for SSE2. Both give the same
// result to the bit. Pointers need no alignment.
struct LKernels {
    // The largest magnitude of count samples; -2^31 counts as 2^31.
    uint32_t (*peak)(const int32_t* samples, size_t count);
};

// For any processor.
extern const LKernels kPlainKernels;
// For processors with SSE2; calling it elsewhere is an illegal instruction.
extern const LKernels kSse2Kernels;

// The fastest version that this processor runs, found out once.
const LKernels& Kernels();
