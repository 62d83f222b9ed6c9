#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "audio/convert/LSincHistory.h"
#include "audio/stream/LFilterSink.h"

// A sink that converts to the sampling rate of another sink by windowed-sinc interpolation with 15 taps;
// mono. The output is not delayed, as long as the input, and held at full scale. The last frames reach the
// other sink when this one is destroyed.
// Units:  frames are those of the input rate. GetFrames() starts with the frames that the other sink holds,
//         converted.
// Errors: the error bit (traced) for another number of channels and for rates that LSincFilter does not
//         convert; such a stage writes nothing.
// Thread: that of the other sink.
class LSinkConvertRateBase final : public LFilterSink {
public:
    // A sink that takes inputRate: the given one if that is its rate, otherwise wrapped. The result may have
    // its error bit set.
    static LSoundSink OpenSink(const LSoundSink& sink, int32_t inputRate);

    // Use OpenSink; public only for the handle's Make().
    LSinkConvertRateBase(const LSoundSink& sink, int32_t inputRate);
    ~LSinkConvertRateBase() override;

    void Write(const int32_t* samples, int32_t frames) override;
    // Cuts the converted material where the input is cut, including the frames still in the buffers here.
    // Material that the other sink held before is not cut. Nothing is cut when that sink cannot cut its
    // material.
    void Truncate(int32_t frames) override;

private:
    void Take(const int32_t* samples, int32_t frames);
    void PassOn();

    std::optional<LSincFilter> m_filter;  // both unless in error
    std::optional<LSincHistory> m_history;
    std::vector<int32_t> m_output;  // a block, of which m_pending frames are filled
    int32_t m_pending = 0;
    int32_t m_sinkFrames = 0;  // frames that the other sink held at first,
    int32_t m_firstFrame = 0;  // and GetFrames() at first
};
