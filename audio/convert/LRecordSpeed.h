#pragma once

#include <cstdint>

#include "audio/stream/LFilterSink.h"

// Records audio that is played faster or slower than it was recorded, such as the high-speed output of a
// portable recorder. The stage takes the audio at the rate of the sound card. Behind it the samples count as
// ones of the rate that they would have at normal speed, and are converted to the rate of the target.
// Units:  percent of normal speed; rates in Hz. The card records at 22050 Hz for a target below 11026 Hz,
//         else at 44100 Hz.
// Errors: the error bit where LSinkConvertRateBase cannot convert.
class LRecordSpeed final : public LFilterSink {
public:
    // A sink for audio that is played at `percent` of its normal speed: the given one at 100, otherwise
    // wrapped. An empty handle (traced) for 0 or less. The result may have its error bit set: only mono is
    // converted.
    static LSoundSink OpenSink(int32_t percent, const LSoundSink& sink);

    // Use OpenSink; public only for the handle's Make().
    LRecordSpeed(const LSoundSink& sink, int32_t captureRate) : LFilterSink(sink, captureRate) {}
};
