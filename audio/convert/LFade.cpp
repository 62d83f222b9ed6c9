#include "audio/convert/LFade.h"

#include <cmath>
#include <numbers>

#include "audio/stream/LGain.h"

LFade::LFade(int32_t frames, uint8_t channels) : m_gains(static_cast<size_t>(frames)), m_channels(channels) {
    // The second half mirrors the first, so that a fade and its reverse add up to 1.0 everywhere.
    const size_t count = m_gains.size();
    for (size_t i = 0; i <= count / 2 && i < count; ++i) {
        const double angle = std::numbers::pi * (static_cast<double>(i) + 0.5) / static_cast<double>(count);
        m_gains[i] = static_cast<int32_t>(std::lround((0.5 - 0.5 * std::cos(angle)) * kUnityGain));
        m_gains[count - 1 - i] = kUnityGain - m_gains[i];
    }
}

void LFade::Cross(const int32_t* old, int32_t* fresh) const {
    for (const int32_t gain : m_gains) {
        for (size_t c = 0; c < m_channels; ++c, ++old, ++fresh)
            *fresh = TimesGain(*fresh, gain) + TimesGain(*old, kUnityGain - gain);
    }
}

void LFade::Out(int32_t* samples) const {
    for (const int32_t gain : m_gains) {
        for (size_t c = 0; c < m_channels; ++c, ++samples) *samples = TimesGain(*samples, kUnityGain - gain);
    }
}
