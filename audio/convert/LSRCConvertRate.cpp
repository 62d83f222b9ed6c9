#include "audio/convert/LSRCConvertRate.h"

#include <algorithm>

#include "base/LArith.h"
#include "base/LTrace.h"

static constexpr int32_t kTaps = 63;
static constexpr int32_t kReach = kTaps / 2;  // before and behind the place of an output frame
static constexpr int32_t kCapacity = kReach + kBlockFrames + kReach + 1;
static_assert(kCapacity == 31 + 8224);

// A filter overshoots; a source that is allowed that much already is not heard any louder.
static int32_t LevelBehindFilter(int32_t level) {
    return level <= 0x100000 ? 2 * level : level;
}

LSoundSource LSRCConvertRate::OpenSource(const LSoundSource& source, int32_t sampleRate) {
    if (source->GetSampleRate() == sampleRate || source->IsError()) return source;
    return LSoundSource::Make<LSRCConvertRate>(source, sampleRate);
}

LSRCConvertRate::LSRCConvertRate(const LSoundSource& source, int32_t sampleRate)
    : LFilterSource(source, sampleRate, source->GetChannels(), LevelBehindFilter(source->GetLevel())) {
    if (GetChannels() > 2) {
        LTrace("Multichannels (or 0) used when BUILD_SUPPORT_MULTICHANS is not set");
        SetError();
    }
    if (!LSincFilter::CanConvert(source->GetSampleRate(), GetSampleRate())) {
        LTrace("LSRCConvertRate::LSRCConvertRate rates too far apart");
        SetError();
    }
    if (IsError()) return;
    m_filter.emplace(source->GetSampleRate(), GetSampleRate(), kTaps);
    m_history.emplace(*m_filter, GetChannels(), kCapacity, kTaps);
    m_history->Restart(kReach, 0);
    m_block.resize(size_t{kBlockFrames} * GetChannels());
}

void LSRCConvertRate::Read(int32_t* samples, int32_t frames) {
    if (IsError()) {
        std::fill_n(samples, static_cast<size_t>(frames) * GetChannels(), 0);
        return;
    }
    while (frames > 0) {
        const int32_t made = m_history->Convert(samples, frames);
        frames -= made;
        samples += static_cast<ptrdiff_t>(made) * GetChannels();
        if (frames > 0) Fill(frames);
    }
}

// Takes from the wrapped source what that many output frames still need, but one block at most.
void LSRCConvertRate::Fill(int32_t frames) {
    const int32_t wanted = static_cast<int32_t>(std::min<int64_t>(m_history->Missing(frames), kBlockFrames));
    m_source->Read(m_block.data(), wanted);
    m_history->Append(m_block.data(), wanted);
}

// What is held from the place of the next output frame on has been read, but is not used yet; of its first
// frame the phase is.
int32_t LSRCConvertRate::GetPosition() const {
    if (IsError()) return 0;
    const int64_t place = int64_t{m_source->GetPosition()} - (m_history->Held() - kReach);
    return m_filter->ToOutput(Saturate(place), m_history->Phase());
}

int32_t LSRCConvertRate::GetLength() const {
    if (IsError()) return 0;  // it delivers nothing, so who reads to the end is there
    // In this order: what has stopped growing has its final length.
    const int32_t reach = IsGrowing() ? kReach : 0;
    return m_filter->ToOutput(std::max(m_source->GetLength() - reach, 0));
}

// The window's frames are read with the next block: what follows the present end of a growing source must
// not be read before it is there.
void LSRCConvertRate::Seek(int32_t frame) {
    if (IsError()) return;
    frame = Clamp(frame, 0, GetLength());
    const int32_t first = m_filter->ToInput(frame) - kReach;
    m_source->Seek(std::max(first, 0));
    m_history->Restart(std::max(-first, 0), m_filter->PhaseOf(frame));
}
