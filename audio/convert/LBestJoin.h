#pragma once

#include <cstdint>
#include <vector>

// Finds the place at which a stretch of sound best continues the sound heard before: the place whose wave is
// most like the expected one. Two pitch periods then meet in phase, and the ear does not notice a cross-fade
// between them.
// The search uses integers only, so every build finds the same place. It is cheap at any rate, since it looks
// coarsely first.
// Units:  frames at the given rate; interleaved samples on the 20-bit scale.
// Thread: one at a time.
class LBestJoin {
public:
    // overlap is the length of the compared wave, reach the largest distance from the middle; both in frames.
    // The candidates are 0 to 2 * reach. The sums hold an overlap of up to 60 ms.
    LBestJoin(int32_t sampleRate, uint8_t channels, int32_t overlap, int32_t reach);

    // expected holds overlap frames, window overlap + 2 * reach. Returns the candidate, a frame of window;
    // reach, the middle one, unless another is better.
    int32_t Find(const int32_t* expected, const int32_t* window);

private:
    uint32_t Mix(const int32_t* samples, std::vector<int32_t>& mixed, uint32_t peak) const;

    const int32_t m_stride;  // frames that the coarse search averages into one
    const int32_t m_channels;
    const int32_t m_reach;
    std::vector<int32_t> m_mixedExpected, m_mixedWindow;  // the sum of the channels
    std::vector<int16_t> m_expected, m_window;            // scaled, at the full rate
    std::vector<int16_t> m_coarseExpected, m_coarseWindow;
};
