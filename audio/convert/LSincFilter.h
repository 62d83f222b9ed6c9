#pragma once

#include <cstdint>
#include <vector>

#include "audio/stream/LKernels.h"

// A low-pass filter for the change from one sampling rate to another by windowed-sinc interpolation, with a
// Kaiser window. Polyphase: one set of coefficients for each fraction of an input frame that occurs.
// The ratio of the rates is approximated by step / phases. Output frame n lies n * step / phases input frames
// behind the first. Its value is the dot product of `taps` input frames, from (taps - 1) / 2 before that
// place on, with the coefficients of phase n * step % phases. The coefficients of each phase sum to 65536.
// The cut-off lies 3 / taps below the end of the lower rate's band. The window is the gentlest whose stop
// band begins a quarter of that band beyond its end.
// Units:  rates in Hz; frames of input or output, as named.
// Source: the window's shape by Kaiser's formulas (J. F. Kaiser, 1974).
// Thread: any; it does not change once it is built.
class LSincFilter {
public:
    // Makes the ratios of the usual rates exact: 8000 to 44100 Hz needs 441 phases, 11025 to 48000 Hz all
    // 640.
    static constexpr int32_t kMaxPhases = 640;
    static constexpr int32_t kMaxReduction = 1024;
    static constexpr int32_t kUnity = 65536;  // the sum of the coefficients of one phase

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

    // ToOutput: output frames for that many input frames and the fraction phase / phases of one more.
    // ToInput: input frames before that output frame. Both are rounded down and held within 32 bits.
    int32_t ToOutput(int32_t inputFrames, int32_t phase = 0) const;
    int32_t ToInput(int32_t outputFrame) const;
    // The number of output frames whose place lies before that input frame.
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
    size_t m_firstRow = 0;                // index in m_rows of the first aligned row
    std::vector<int16_t> m_rows;
};
