#pragma once

#include <cstdint>

#include "audio/LFilterSource.h"

// A filter that changes the sampling rate by windowed-sinc interpolation with 63 taps, mono and stereo.
class LSRCConvertRate final : public LFilterSource {
public:
    // The source itself when it has that rate or an error, otherwise wrapped. The result may have its error
    // bit set: a rate below 1, more than two channels.
    static LSoundSource OpenSource(const LSoundSource& source, int32_t sampleRate);
};
