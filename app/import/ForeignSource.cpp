#include "app/import/ForeignSource.h"

#include <algorithm>

#include "base/LArith.h"
#include "base/LTrace.h"

namespace {

constexpr int32_t kHighestRate = 196000;

// In range, or what sets the error bit.
int32_t Rate(const ForeignFormat& format) {
    return format.sampleRate > kHighestRate ? 0 : format.sampleRate;
}
uint8_t Channels(const ForeignFormat& format) {
    return format.channels == 1 || format.channels == 2 ? static_cast<uint8_t>(format.channels) : 0;
}

}  // namespace

ForeignSource::ForeignSource(std::unique_ptr<ForeignPcm> pcm, const ForeignFormat& format)
    : LSoundSourceBase(Rate(format), Channels(format), kFullScale16),
      m_pcm(std::move(pcm)),
      m_block(size_t{kBlockFrames} * GetChannels()),
      m_told(format.frames) {}

int32_t ForeignSource::GetLength() const {
    return m_end >= 0 ? m_end : std::max(m_told, Saturate(int64_t{m_position} + 1));
}

void ForeignSource::Read(int32_t* samples, int32_t frames) {
    int32_t done = 0;
    while (done < frames && m_end < 0) {
        const int32_t count = Pull(samples + size_t(done) * GetChannels(), frames - done);
        done += count;
        if (count == 0) m_end = Saturate(int64_t{m_position} + done);
    }
    std::fill_n(samples + size_t(done) * GetChannels(), size_t(frames - done) * GetChannels(), 0);
    m_position = Saturate(int64_t{m_position} + frames);
}

// 0 at the end, also after a failure.
int32_t ForeignSource::Pull(int32_t* samples, int32_t frames) {
    const int32_t count = m_pcm->Read(m_block.data(), frames);
    m_isWhole = count == 0;
    if (count < 0 || count > frames) {
        LTrace("ForeignSource::Read decoder failed");
        return 0;
    }
    const size_t values = static_cast<size_t>(count) * GetChannels();
    for (size_t i = 0; i < values; ++i) samples[i] = FromPcm16(m_block[i]);
    return count;
}

void ForeignSource::Seek(int32_t frame) {
    if (frame == m_position) return;
    LTrace("ForeignSource::Seek not possible");
    m_end = m_position;
    m_isWhole = false;
}
