#include "audio/LBestJoin.h"

#include <algorithm>
#include <bit>

namespace {

// The strong harmonics of speech, by which it is matched, lie below 2 kHz.
constexpr int32_t kCoarseRate = 4000;

// Samples of so many bits and a sign give sums of products that fit 32 bits over 500 terms.
constexpr int kSampleBits = 11;

uint32_t SquareRoot(uint32_t v) {
    uint32_t root = 0;
    for (uint32_t bit = 1u << 15; bit != 0; bit >>= 1) {
        const uint32_t trial = root | bit;
        if (trial * trial <= v) root = trial;
    }
    return root;
}

}  // namespace

LBestJoin::LBestJoin(int32_t sampleRate, uint8_t channels, int32_t overlap, int32_t reach)
    : m_stride(std::max(sampleRate / kCoarseRate, 1)),
      m_channels(channels),
      m_reach(reach),
      m_mixedExpected(static_cast<size_t>(overlap)),
      m_mixedWindow(static_cast<size_t>(overlap + 2 * reach)),
      m_expected(m_mixedExpected.size()),
      m_window(m_mixedWindow.size()),
      m_coarseExpected(m_expected.size() / static_cast<size_t>(m_stride)),
      m_coarseWindow(m_window.size() / static_cast<size_t>(m_stride)) {}

// Adds the channels up, the first one twice: so it is not lost in a second one of opposite phase, nor is the
// second one when the first is silent. Gives the peak, or the given one if that is higher.
uint32_t LBestJoin::Mix(const int32_t* samples, std::vector<int32_t>& mixed, uint32_t peak) const {
    for (int32_t& sum : mixed) {
        sum = *samples;
        for (int32_t c = 0; c < m_channels; ++c) sum += *samples++;
        peak = std::max(peak, sum < 0 ? 0u - static_cast<uint32_t>(sum) : static_cast<uint32_t>(sum));
    }
    return peak;
}

namespace {

void Shift(const std::vector<int32_t>& from, std::vector<int16_t>& to, int shift) {
    for (size_t i = 0; i < to.size(); ++i) to[i] = static_cast<int16_t>(from[i] >> shift);
}

// The mean of each stride of samples.
void Coarsen(const std::vector<int16_t>& from, std::vector<int16_t>& to, int32_t stride) {
    const int16_t* next = from.data();
    for (int16_t& mean : to) {
        int32_t sum = 0;
        for (int32_t i = 0; i < stride; ++i) sum += *next++;
        mean = static_cast<int16_t>(sum / stride);
    }
}

}  // namespace

// Correlation over the root of the candidate's energy: the size of a wave does not matter, its shape does.
// Compared crosswise, without a division. Candidates first to last, beginning with start.
int32_t LBestJoin::Best(const Wave& expected, const Wave& window, int32_t first, int32_t last, int32_t start,
                        int32_t stride) {
    int32_t best = start;
    int64_t bestMatch = 0, bestRoot = 1;
    const auto tryOne = [&](int32_t candidate) {
        const int16_t* heard = window.data() + candidate;
        int32_t match = 0;
        uint32_t energy = 0;
        for (size_t i = 0; i < expected.size(); i += static_cast<size_t>(stride)) {
            match += expected[i] * heard[i];
            energy += static_cast<uint32_t>(heard[i] * heard[i]);
        }
        const int64_t root = SquareRoot(energy) + 1;
        if (match * bestRoot <= bestMatch * root) return;
        best = candidate;
        bestMatch = match;
        bestRoot = root;
    };
    tryOne(start);
    for (int32_t candidate = first; candidate <= last; ++candidate) tryOne(candidate);
    return best;
}

int32_t LBestJoin::Find(const int32_t* expected, const int32_t* window) {
    const uint32_t peak = Mix(window, m_mixedWindow, Mix(expected, m_mixedExpected, 0));
    const int shift = std::max(static_cast<int>(std::bit_width(peak)) - kSampleBits, 0);
    Shift(m_mixedExpected, m_expected, shift);
    Shift(m_mixedWindow, m_window, shift);
    if (m_stride == 1) return Best(m_expected, m_window, 0, 2 * m_reach, m_reach, 1);

    Coarsen(m_expected, m_coarseExpected, m_stride);
    Coarsen(m_window, m_coarseWindow, m_stride);
    const int32_t lastCoarse = static_cast<int32_t>(m_coarseWindow.size() - m_coarseExpected.size());
    const int32_t middle = m_reach / m_stride;
    const int32_t coarse = Best(m_coarseExpected, m_coarseWindow, 0, lastCoarse, middle, 1);
    const int32_t near = coarse == middle ? m_reach : std::min(coarse * m_stride, 2 * m_reach);
    return Best(m_expected, m_window, std::max(near - m_stride, 0), std::min(near + m_stride, 2 * m_reach),
                near, m_stride);
}
