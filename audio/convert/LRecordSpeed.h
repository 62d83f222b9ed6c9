#pragma once

#include <cstdint>

#include "audio/stream/LFilterSink.h"

// Recording from audio that is played faster or slower than it was recorded, such as the high-speed output of
// a portable recorder. The stage takes the audio at the rate of the sound card; behind it the samples count
// as ones of the rate that they would have at normal speed, and are converted to the rate of the target.
class LRecordSpeed final : public LFilterSink {
public:
    // A sink for audio that is played at `percent` of its normal speed: the given one at 100, otherwise
    // wrapped. An empty handle (traced) for 0 or less. The result may have its error bit set: only mono is
    // converted.
    static LSoundSink OpenSink(int32_t percent, const LSoundSink& sink);

    // The way in is OpenSink.
    LRecordSpeed(const LSoundSink& sink, int32_t captureRate) : LFilterSink(sink, captureRate) {}
};
