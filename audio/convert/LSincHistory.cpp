#include "audio/convert/LSincHistory.h"

#include <algorithm>

#include "audio/stream/LSample.h"
#include "base/LArith.h"

// A plain array for each channel. New frames are appended at its end; when there is no room, the window and
// the frames behind it move to the front. So the frames of a window always lie in one piece, as the kernels
// need them: a ring buffer would split the window at its seam. Frames are stored as 16 bits, which halves the
// memory traffic and lets the vector loops multiply 16-bit pairs.

LSincHistory::LSincHistory(const LSincFilter& filter, uint8_t channels, int32_t capacity, int32_t ahead)
    : m_filter(filter),
      m_channels(channels),
      m_capacity(capacity),
      m_ahead(ahead),
      m_frames(size_t{channels} * static_cast<size_t>(capacity)) {
    if (channels > 1) m_narrowed.resize(size_t{channels} * static_cast<size_t>(capacity));
}

void LSincHistory::Restart(int32_t silentFrames, int32_t phase) {
    for (uint8_t channel = 0; channel < m_channels; ++channel)
        std::fill_n(Channel(channel), silentFrames, int16_t{0});
    m_start = 0;
    m_end = silentFrames;
    m_phase = phase;
}

// Moves the window, and all frames behind its start, to the front.
void LSincHistory::MakeRoom() {
    const int32_t dropped = std::min(m_start, m_end);
    for (uint8_t channel = 0; channel < m_channels; ++channel)
        std::copy(Channel(channel) + dropped, Channel(channel) + m_end, Channel(channel));
    m_start -= dropped;
    m_end -= dropped;
}

int32_t LSincHistory::Append(const int32_t* samples, int32_t frames) {
    if (frames > m_capacity - m_end) MakeRoom();
    const int32_t taken = std::min(frames, m_capacity - m_end);
    const size_t count = static_cast<size_t>(taken);
    if (m_channels == 1) {
        Kernels().narrow(samples, Channel(0) + m_end, count);
    } else {
        Kernels().narrow(samples, m_narrowed.data(), count * m_channels);
        for (uint8_t channel = 0; channel < m_channels; ++channel)
            for (size_t i = 0; i < count; ++i)
                Channel(channel)[static_cast<size_t>(m_end) + i] = m_narrowed[i * m_channels + channel];
    }
    m_end += taken;
    return taken;
}

int32_t LSincHistory::Convert(int32_t* samples, int32_t frames) {
    const int32_t spare = Held() - m_ahead;  // frames by which the window can still move on
    if (spare < 0) return 0;
    const int64_t phases = m_filter.Phases(), step = m_filter.Step();
    const int64_t possible = ((spare + 1) * phases - m_phase + step - 1) / step;
    const int32_t made = static_cast<int32_t>(std::min<int64_t>(possible, frames));
    for (uint8_t channel = 0; channel < m_channels; ++channel)
        Kernels().interpolate(m_filter.Rows(), static_cast<uint32_t>(m_phase), Channel(channel) + m_start,
                              samples + channel, static_cast<size_t>(made), m_channels);
    const int64_t moved = m_phase + made * step;
    m_start += static_cast<int32_t>(moved / phases);
    m_phase = static_cast<int32_t>(moved % phases);
    return made;
}

int64_t LSincHistory::Missing(int32_t frames) const {
    const int64_t lastWindow = (m_phase + int64_t{frames - 1} * m_filter.Step()) / m_filter.Phases();
    return std::max<int64_t>(lastWindow + m_ahead - Held(), 0);
}

void LSincHistory::Rewind(int32_t cut, int32_t held, int32_t phase) {
    const int32_t end = m_end - cut;
    if (end >= held && end >= 0) m_end = end;
    m_start = m_end - held;
    if (m_start < 0) {
        // Fewer frames were ever taken than the window holds: silence stands before them.
        const int32_t silent = -m_start;
        for (uint8_t channel = 0; channel < m_channels; ++channel) {
            std::copy_backward(Channel(channel), Channel(channel) + m_end, Channel(channel) + held);
            std::fill_n(Channel(channel), silent, int16_t{0});
        }
        m_start = 0;
        m_end = held;
    }
    m_phase = phase;
}
