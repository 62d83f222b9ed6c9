#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

// A raised-cosine cross-fade of fixed length, for any number of channels.
// Thread: any; it does not change once it is built.
class LFade {
public:
    LFade(int32_t frames, uint8_t channels);

    int32_t Frames() const { return static_cast<int32_t>(m_gains.size()); }
    // The gain of the sound that comes, at each frame; the gain of the one that goes is kUnityGain less this.
    const std::vector<int32_t>& Gains() const { return m_gains; }

    // Both of Frames() frames: from old to fresh, the result in fresh.
    void Cross(const int32_t* old, int32_t* fresh) const;
    // From the sound to silence.
    void Out(int32_t* samples) const;

private:
    std::vector<int32_t> m_gains;
    size_t m_channels;
};
