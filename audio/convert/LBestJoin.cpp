#include "audio/convert/LBestJoin.h"

#include <algorithm>
#include <bit>

// A normalised cross-correlation in two steps. The first step averages the sound down to about 4000 Hz and
// tries every candidate; the second tries the frames around the winner at the full rate, with every stride-th
// sample. A coarse search at 8000 Hz was rejected: it costs more than twice as much and, on synthetic speech,
// lands a little further from the original.
// The score of a candidate is its correlation with the expected wave over the root of its energy. Scores are
// compared squared and multiplied crosswise, without root or division, and the energy slides from one
// candidate to the next; together that is four times as fast. Samples are scaled to 11 bits by the common
// peak, so quiet speech is matched as precisely as loud speech.

namespace {

// The strong harmonics of speech, by which it is matched, lie below 2 kHz: 4000 samples per second hold them.
constexpr int32_t kCoarseRate = 4000;

// Magnitude bits of a scaled sample: the sum of 500 products of two then fits into 32 bits. An overlap of 10
// ms has at most 80 terms, since the coarse rate is below 8000 Hz (a stride is a whole number of frames).
constexpr int kSampleBits = 11;

using Wave = std::vector<int16_t>;

// Scales samples to kSampleBits by a shift, up or down.
void Scale(const std::vector<int32_t>& from, Wave& to, int shift) {
    const int down = std::max(shift, 0), up = std::max(-shift, 0);
    for (size_t i = 0; i < to.size(); ++i) to[i] = static_cast<int16_t>((from[i] >> down) * (1 << up));
}

// Averages each group of stride samples into one.
void Coarsen(const Wave& from, Wave& to, int32_t stride) {
    const int16_t* next = from.data();
    for (int16_t& mean : to) {
        int32_t sum = 0;
        for (int32_t i = 0; i < stride; ++i) sum += *next++;
        mean = static_cast<int16_t>(sum / stride);
    }
}

// Finds the candidate with the greatest correlation over the root of its energy: shape counts, loudness does
// not.
class Search {
public:
    // Every stride-th sample is compared.
    Search(const Wave& expected, const Wave& window, int32_t stride)
        : m_expected(expected), m_window(window.data()), m_stride(static_cast<size_t>(stride)) {}

    // Tries the candidates first to last. start wins ties, and when no candidate correlates with the expected
    // wave.
    int32_t Best(int32_t start, int32_t first, int32_t last) {
        m_best = start;
        Try(start, Energy(start));
        int32_t energy = Energy(first);
        for (int32_t candidate = first;; ++candidate) {
            Try(candidate, energy);
            if (candidate == last) return m_best;
            energy = m_stride == 1 ? energy + Gained(candidate) : Energy(candidate + 1);
        }
    }

private:
    static int32_t Square(int32_t v) { return v * v; }

    int32_t Energy(int32_t candidate) const {
        const int16_t* heard = m_window + candidate;
        int32_t energy = 0;
        for (size_t i = 0; i < m_expected.size(); i += m_stride) energy += Square(heard[i]);
        return energy;
    }
    // The difference between the energy of the next candidate and that of this one.
    int32_t Gained(int32_t candidate) const {
        const int16_t* heard = m_window + candidate;
        return Square(heard[m_expected.size()]) - Square(heard[0]);
    }
    void Try(int32_t candidate, int32_t energy) {
        const int16_t* heard = m_window + candidate;
        int32_t match = 0;
        for (size_t i = 0; i < m_expected.size(); i += m_stride) match += m_expected[i] * heard[i];
        if (match <= 0) return;
        // Of 31 bits 19 remain: the square of one times another fits into 63.
        const int64_t scaled = match >> kDropBits, square = scaled * scaled;
        const int64_t scaledEnergy = (energy >> kDropBits) + 1;
        if (square * m_bestEnergy <= m_bestSquare * scaledEnergy) return;
        m_best = candidate;
        m_bestSquare = square;
        m_bestEnergy = scaledEnergy;
    }
    static constexpr int kDropBits = 12;

    const Wave& m_expected;
    const int16_t* m_window;
    const size_t m_stride;
    int32_t m_best = 0;
    int64_t m_bestSquare = 0;
    int64_t m_bestEnergy = 1;
};

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

// Sums the channels, the first one twice. It is then not cancelled by a second channel of opposite phase, and
// the second one still counts when the first is silent. Returns the peak, or the given one if that is higher.
uint32_t LBestJoin::Mix(const int32_t* samples, std::vector<int32_t>& mixed, uint32_t peak) const {
    for (int32_t& sum : mixed) {
        sum = *samples;
        for (int32_t c = 0; c < m_channels; ++c) sum += *samples++;
        peak = std::max(peak, sum < 0 ? 0u - static_cast<uint32_t>(sum) : static_cast<uint32_t>(sum));
    }
    return peak;
}

int32_t LBestJoin::Find(const int32_t* expected, const int32_t* window) {
    const uint32_t peak = Mix(window, m_mixedWindow, Mix(expected, m_mixedExpected, 1));
    const int shift = static_cast<int>(std::bit_width(peak)) - kSampleBits;
    Scale(m_mixedExpected, m_expected, shift);
    Scale(m_mixedWindow, m_window, shift);
    if (m_stride == 1) return Search(m_expected, m_window, 1).Best(m_reach, 0, 2 * m_reach);

    Coarsen(m_expected, m_coarseExpected, m_stride);
    Coarsen(m_window, m_coarseWindow, m_stride);
    const int32_t middle = m_reach / m_stride;
    const int32_t lastCoarse = static_cast<int32_t>(m_coarseWindow.size() - m_coarseExpected.size());
    const int32_t coarse = Search(m_coarseExpected, m_coarseWindow, 1).Best(middle, 0, lastCoarse);
    const int32_t near = coarse == middle ? m_reach : std::min(coarse * m_stride, 2 * m_reach);
    return Search(m_expected, m_window, m_stride)
        .Best(near, std::max(near - m_stride, 0), std::min(near + m_stride, 2 * m_reach));
}
