#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "audio/convert/LSincHistory.h"
#include "audio/stream/LFilterSink.h"

// A sink that changes the sampling rate by windowed-sinc interpolation with 15 taps on the way to another
// sink; mono. The output is not delayed and as long as the input. The last frames reach the other sink when
// this one is destroyed.
// Units:  frames are those of the input rate. GetFrames() starts with what the other sink holds, converted.
// Errors: the error bit (traced) for another number of channels and for rates that LSincFilter does not
//         convert; such a stage writes nothing.
class LSinkConvertRateBase final : public LFilterSink {
public:
    // A sink that takes inputRate: the given one if that is its rate, otherwise wrapped. The result may have
    // its error bit set.
    static LSoundSink OpenSink(const LSoundSink& sink, int32_t inputRate);

    // The way in is OpenSink.
    LSinkConvertRateBase(const LSoundSink& sink, int32_t inputRate);
    ~LSinkConvertRateBase() override;

    void Write(const int32_t* samples, int32_t frames) override;
    // Cuts the converted material where the input is cut, also what is still on its way. What the other sink
    // held before is not cut, and neither is anything when that sink does not cut what it was given.
    void Truncate(int32_t frames) override;

private:
    void Take(const int32_t* samples, int32_t frames);
    void PassOn();

    std::optional<LSincFilter> m_filter;  // both unless in error
    std::optional<LSincHistory> m_history;
    std::vector<int32_t> m_output;  // a block, of which m_pending frames are filled
    int32_t m_pending = 0;
    int32_t m_sinkFrames = 0;  // what the other sink held at first,
    int32_t m_firstFrame = 0;  // and GetFrames() at first
};
