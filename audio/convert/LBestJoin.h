#pragma once

#include <cstdint>
#include <vector>

// Finds where in a stretch of sound to go on, so that it continues what has just been heard: the place whose
// wave is most like the one expected. Two pitch periods then meet in phase, and a cross-fade between them
// is not heard.
// Integers only: every build finds the same place. Cheap at any rate, since it looks coarsely first.
class LBestJoin {
public:
    // All in frames: the stretch compared is overlap long, and begins at 0 to 2 * reach.
    LBestJoin(int32_t sampleRate, uint8_t channels, int32_t overlap, int32_t reach);

    // expected has overlap frames, window overlap + 2 * reach. The frame of window to go on from; the middle
    // one unless another is better.
    int32_t Find(const int32_t* expected, const int32_t* window);

private:
    uint32_t Mix(const int32_t* samples, std::vector<int32_t>& mixed, uint32_t peak) const;

    const int32_t m_stride;  // frames that the coarse look takes as one
    const int32_t m_channels;
    const int32_t m_reach;
    std::vector<int32_t> m_mixedExpected, m_mixedWindow;  // all channels together
    std::vector<int16_t> m_expected, m_window;            // of full size
    std::vector<int16_t> m_coarseExpected, m_coarseWindow;
};
