#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

// A raised-cosine (Hann) cross-fade of fixed length, for any number of channels. The two gains of a frame add
// up to 1.0 exactly, so two sounds that are alike keep their level throughout.
// Units:  frames; gains of 24 bits (LGain.h).
// Thread: any; it does not change once it is built.
class LFade {
public:
    LFade(int32_t frames, uint8_t channels);

    int32_t Frames() const { return static_cast<int32_t>(m_gains.size()); }
    // The gain of the incoming sound at each frame; the gain of the outgoing one is kUnityGain less this.
    const std::vector<int32_t>& Gains() const { return m_gains; }

    // Cross-fades from old to fresh, both of Frames() frames; the result replaces fresh.
    void Cross(const int32_t* old, int32_t* fresh) const;
    // Fades Frames() frames out to silence, in place.
    void Out(int32_t* samples) const;

private:
    std::vector<int32_t> m_gains;
    size_t m_channels;
};
