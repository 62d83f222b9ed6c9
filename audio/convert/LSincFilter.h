#pragma once

#include <cstdint>
#include <vector>

#include "audio/stream/LKernels.h"

// A low-pass filter for the change from one sampling rate to another by windowed-sinc interpolation.
//
// The ratio of the rates is approximated by step / phases. Output frame n lies n * step / phases input frames
// behind the first; its value is the dot product of `taps` input frames, from (taps - 1) / 2 before that place
// on, with the coefficients of phase n * step % phases. The coefficients of each phase sum to 65536.
//
// The cut-off lies 3 / taps below the end of the lower rate's band, and the window is the gentlest whose stop
// band begins a quarter of that band beyond its end.
class LSincFilter {
public:
    static constexpr int32_t kMaxPhases = 640;
    static constexpr int32_t kMaxReduction = 1024;
    static constexpr int32_t kUnity = 65536;

    // Whether there is a filter for these rates: both above 0, and neither kMaxPhases times the other (to a
    // higher rate) nor kMaxReduction times (to a lower one).
    static bool CanConvert(int32_t inputRate, int32_t outputRate);

    // Rates that CanConvert agrees to; taps 15 or 63.
    LSincFilter(int32_t inputRate, int32_t outputRate, int32_t taps);
    LSincFilter(const LSincFilter&) = delete;
    LSincFilter& operator=(const LSincFilter&) = delete;

    int32_t Phases() const { return m_phases; }
    int32_t Step() const { return m_step; }
    int32_t Taps() const { return m_taps; }
    int32_t Coefficient(int32_t phase, int32_t tap) const {
        return m_coefficients[static_cast<size_t>(phase) * static_cast<size_t>(m_taps) +
                              static_cast<size_t>(tap)];
    }
    // The coefficients as the kernels take them.
    LSincRows Rows() const;

    // Output frames for that many input frames and the fraction phase / phases of one more, and input frames
    // before that output frame; both rounded down and held within 32 bits.
    int32_t ToOutput(int32_t inputFrames, int32_t phase = 0) const;
    int32_t ToInput(int32_t outputFrame) const;
    // Output frames whose place lies before that input frame.
    int32_t OutputsBefore(int32_t inputFrame) const;
    // The phase of that output frame.
    int32_t PhaseOf(int32_t outputFrame) const;

private:
    void FindRatio(int32_t inputRate, int32_t outputRate);
    void Design(double cutOff, double beta);
    void SplitRow(int32_t phase);

    int32_t m_taps;
    int32_t m_phases = 1;
    int32_t m_step = 1;
    std::vector<int32_t> m_coefficients;  // phase by phase
    size_t m_firstRow = 0;                // the rows start where they are aligned
    std::vector<int16_t> m_rows;
};
