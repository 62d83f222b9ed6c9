#pragma once

#include <windows.h>

#include "base/LOwned.h"

struct GlobalMemoryTraits {
    using Type = HGLOBAL;
    static Type None() { return nullptr; }
    static void Close(Type h) { GlobalFree(h); }
};
// A block of the platform's global memory, in which wave devices want their buffers.
using LGlobalMemory = LOwned<GlobalMemoryTraits>;
