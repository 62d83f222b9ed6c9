#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "audio/convert/LSincHistory.h"
#include "audio/stream/LFilterSource.h"

// A filter that changes the sampling rate by windowed-sinc interpolation with 63 taps, mono and stereo. The
// output is not delayed, and after Seek() it is the same, sample for sample, as in an uninterrupted run.
// It reads no further ahead than the filter reaches (31 frames). While the wrapped source is growing, its
// newest 31 frames are not yet part of the length, so a reader within the length never hears the present end
// as silence.
// Input beyond 16-bit full scale is clipped, so a source with such a level passes a limiter (LSRCPeakLimit)
// first. The output may overshoot, hence the doubled level.
// Units:  frames of the new rate.
// Errors: the error bit (traced) for a rate below 1, more than two channels, or rates that LSincFilter does
//         not convert. Such a stage has no length and delivers silence.
class LSRCConvertRate final : public LFilterSource {
public:
    // The source itself when it has that rate or an error, otherwise wrapped at its present position. The
    // result may have its error bit set (see above).
    static LSoundSource OpenSource(const LSoundSource& source, int32_t sampleRate);

    // Use OpenSource; public only for the handle's Make().
    LSRCConvertRate(const LSoundSource& source, int32_t sampleRate);

    void Read(int32_t* samples, int32_t frames) override;
    int32_t GetPosition() const override;
    int32_t GetLength() const override;
    void Seek(int32_t frame) override;

private:
    void Fill(int32_t frames);

    std::optional<LSincFilter> m_filter;  // both unless in error
    std::optional<LSincHistory> m_history;
    std::vector<int32_t> m_block;  // a block of the wrapped source
};
