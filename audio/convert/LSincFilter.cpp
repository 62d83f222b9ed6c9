#include "audio/convert/LSincFilter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "base/LArith.h"

static constexpr int32_t kMostTaps = 63;
static constexpr size_t kRowAlignment = 64;  // a row of 63 taps takes two cache lines

// The start of the stop band, in parts of the lower rate's band. Found by measuring: among the windows that
// follow from such values, the one of 1.252 lets least through from 5000 Hz on at 44100 to 8000 Hz (all of it
// is 56 dB down). The band between 4000 and 5000 Hz folds back to above 3000 Hz, where speech has little to
// lose.
static constexpr double kStopBand = 1.252;
// The largest shape factor of the window. Beyond it the seven terms of the window's series (BesselI0OfSquare)
// are too few to hold the stop band down.
static constexpr double kMaxBeta = 9.0;

// The modified Bessel function of order 0, of the square of x / 2: the first seven terms of its power series,
// the sum of (x / 2)^2k / k!^2.
static double BesselI0OfSquare(double square) {
    constexpr double kFactors[] = {1.0 / 518400, 1.0 / 14400, 1.0 / 576, 1.0 / 36, 1.0 / 4, 1.0, 1.0};
    double sum = 0.0;
    for (double factor : kFactors) sum = sum * square + factor;
    return sum;
}

// The shape factor of a Kaiser window, by Kaiser's empirical formulas, for a window of that many intervals
// and a transition band of that width in radians for each interval.
static double KaiserBeta(double intervals, double transition) {
    const double attenuationDb = 7.95 + 2.285 * intervals * transition;
    if (attenuationDb > 50.0) return std::min(0.1102 * (attenuationDb - 8.7), kMaxBeta);
    if (attenuationDb < 21.0) return 0.0;
    return 0.5842 * std::pow(attenuationDb - 21.0, 0.4) + 0.07886 * (attenuationDb - 21.0);
}

bool LSincFilter::CanConvert(int32_t inputRate, int32_t outputRate) {
    return inputRate > 0 && outputRate > 0 && inputRate / outputRate < kMaxReduction &&
           outputRate / inputRate < kMaxPhases;
}

LSincFilter::LSincFilter(int32_t inputRate, int32_t outputRate, int32_t taps) : m_taps(taps) {
    FindRatio(inputRate, outputRate);
    const size_t phases = static_cast<size_t>(m_phases);
    m_coefficients.resize(phases * static_cast<size_t>(taps));
    m_rows.resize(phases * static_cast<size_t>(taps + 1) + kRowAlignment / sizeof(int16_t));
    m_firstRow = (0u - reinterpret_cast<uintptr_t>(m_rows.data())) % kRowAlignment / sizeof(int16_t);

    const double reduction = std::max(1.0, static_cast<double>(inputRate) / outputRate);
    const double cutOff = 1.0 - 3.0 / taps;
    const double transition = 2.0 * (kStopBand - cutOff) * std::numbers::pi / reduction;
    Design(cutOff / reduction, KaiserBeta(taps - 1, transition));
    for (int32_t phase = 0; phase < m_phases; ++phase) SplitRow(phase);
}

// Finds the smallest number of phases with the least error, hence the smallest exact one where there is any.
void LSincFilter::FindRatio(int32_t inputRate, int32_t outputRate) {
    int64_t leastError = INT64_MAX;  // |step / phases - input / output|, times phases * output
    for (int32_t phases = 1; phases <= kMaxPhases && leastError > 0; ++phases) {
        const int64_t wanted = int64_t{inputRate} * phases;
        const int64_t step = std::max<int64_t>((wanted + outputRate / 2) / outputRate, 1);
        const int64_t error = std::abs(wanted - step * outputRate);
        if (leastError != INT64_MAX && error * m_phases >= leastError * phases) continue;
        leastError = error;
        m_phases = phases;
        m_step = static_cast<int32_t>(step);
    }
}

// Rounds the coefficients of one phase to integers that sum to kUnity, by largest remainder: all are rounded
// down, and those that lost most are rounded up instead. Adding the missing rest to a single coefficient was
// rejected; it costs 2 dB of quality. Remainders are compared in steps of 1/1024: two taps at the same
// distance from the middle have the same remainder except for the last bits of their sines, which differ from
// one processor and build to the next.
static void RoundToUnity(const double* exact, int32_t* rounded, int32_t taps) {
    constexpr double kSteps = 1024.0;
    std::array<int32_t, kMostTaps> lost;
    std::array<uint8_t, kMostTaps> order;
    int32_t missing = LSincFilter::kUnity;
    for (int32_t tap = 0; tap < taps; ++tap) {
        const size_t i = static_cast<size_t>(tap);
        rounded[tap] = static_cast<int32_t>(std::floor(exact[tap]));
        lost[i] = static_cast<int32_t>((exact[tap] - rounded[tap]) * kSteps);
        order[i] = static_cast<uint8_t>(tap);
        missing -= rounded[tap];
    }
    std::nth_element(
        order.begin(), order.begin() + missing, order.begin() + taps,
        [&lost](uint8_t a, uint8_t b) { return lost[a] != lost[b] ? lost[a] > lost[b] : a < b; });
    for (int32_t i = 0; i < missing; ++i) ++rounded[order[static_cast<size_t>(i)]];
}

// Computes the coefficients of all phases. The window reaches (taps - 1) / 2 input frames to either side of
// the output frame. It is open at its ends, so the first tap is 0 in each phase. From tap to tap the sine's
// angle grows by the same step, so each sine follows from the one before by the addition theorem: a filter of
// 441 phases has 27783 of them, and computing each would take longer than converting a second of sound.
void LSincFilter::Design(double cutOff, double beta) {
    const int32_t reach = (m_taps - 1) / 2;
    const double angleStep = std::numbers::pi * cutOff;
    const double stepSine = std::sin(angleStep), stepCosine = std::cos(angleStep);
    std::array<double, kMostTaps> exact{};
    for (int32_t phase = 0; phase < m_phases; ++phase) {
        double x = 1 - reach - static_cast<double>(phase) / m_phases;
        double sine = std::sin(angleStep * x), cosine = std::cos(angleStep * x), sum = 0.0;
        for (int32_t tap = 1; tap < m_taps; ++tap, x += 1.0) {
            const double inside = 1.0 - x * x / (reach * reach);
            const double sinc = tap == reach && phase == 0 ? 1.0 : sine / (angleStep * x);
            const double window = inside > 0.0 ? BesselI0OfSquare(beta * beta / 4.0 * inside) : 0.0;
            sum += exact[static_cast<size_t>(tap)] = sinc * window;
            const double nextSine = sine * stepCosine + cosine * stepSine;
            cosine = cosine * stepCosine - sine * stepSine;
            sine = nextSine;
        }
        for (double& value : exact) value *= kUnity / sum;
        RoundToUnity(exact.data(), &m_coefficients[static_cast<size_t>(phase) * static_cast<size_t>(m_taps)],
                     m_taps);
    }
}

// Lays the coefficients of one phase out for the kernels, as 16 bits. A row holds the first half, for taps 1
// to (taps + 1) / 2, then the second half, for taps (taps - 1) / 2 to the last. The two taps in the middle,
// the only ones that may exceed 16 bits, belong to both halves, with half of their value each.
void LSincFilter::SplitRow(int32_t phase) {
    const int32_t half = (m_taps + 1) / 2;
    int16_t* row = &m_rows[m_firstRow + static_cast<size_t>(phase) * static_cast<size_t>(m_taps + 1)];
    for (int32_t slot = 0; slot < half; ++slot) {
        const bool firstShares = slot >= half - 2, secondShares = slot < 2;
        const int32_t first = Coefficient(phase, slot + 1);
        const int32_t second = Coefficient(phase, slot + half - 1);
        row[slot] = static_cast<int16_t>(firstShares ? first >> 1 : first);
        row[half + slot] = static_cast<int16_t>(secondShares ? second - (second >> 1) : second);
    }
}

LSincRows LSincFilter::Rows() const {
    return {m_rows.data() + m_firstRow, static_cast<uint32_t>(m_taps + 1) / 2,
            static_cast<uint32_t>(m_phases), static_cast<uint32_t>(m_step)};
}

int32_t LSincFilter::ToOutput(int32_t inputFrames, int32_t phase) const {
    return Saturate((int64_t{inputFrames} * m_phases + phase) / m_step);
}

int32_t LSincFilter::ToInput(int32_t outputFrame) const {
    return Saturate(int64_t{outputFrame} * m_step / m_phases);
}

int32_t LSincFilter::OutputsBefore(int32_t inputFrame) const {
    return Saturate((int64_t{inputFrame} * m_phases + m_step - 1) / m_step);
}

int32_t LSincFilter::PhaseOf(int32_t outputFrame) const {
    return static_cast<int32_t>(int64_t{outputFrame} * m_step % m_phases);
}
