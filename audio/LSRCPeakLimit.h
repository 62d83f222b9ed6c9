#pragma once

#include <cstdint>

#include "audio/LFilterSource.h"

// A look-ahead peak limiter: turns the sound down smoothly before a peak arrives, so that nothing louder than
// the limit leaves it, and up again afterwards.
class LSRCPeakLimit final : public LFilterSource {
public:
    // The source itself when its level is at most the limit or it has an error, otherwise wrapped.
    static LSoundSource OpenSource(const LSoundSource& source, int32_t limit = kFullScale16);
};
