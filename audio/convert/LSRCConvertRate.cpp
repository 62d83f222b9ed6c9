#include "audio/convert/LSRCConvertRate.h"

#include <algorithm>

#include "base/LArith.h"
#include "base/LTrace.h"

// Rate conversion that pulls: Read computes the output frames that the history (LSincHistory) already has the
// input for, then reads from the wrapped source exactly the frames that the missing outputs need, one block
// at most. Reading whole blocks ahead was rejected: a recording that grows ends where it has grown to, and
// reading beyond that end yields silence that would stay in the history. For the same reason Seek only places
// the wrapped source, and the next Read fetches the window.
// Position and length are computed from those of the wrapped source, so nothing drifts: the position is the
// place of the next output frame, counted back from the input frames that were read but not used.

static constexpr int32_t kTaps = 63;
static constexpr int32_t kReach = kTaps / 2;  // before and behind the place of an output frame
static constexpr int32_t kCapacity = kReach + kBlockFrames + kReach + 1;
static_assert(kCapacity == 31 + 8224);

// The level behind the filter, which may overshoot: doubled. Above twice full scale (0x100000) the level
// stays, since the input is clipped at full scale anyway.
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

// Reads the input that these output frames still need from the wrapped source, one block at most.
void LSRCConvertRate::Fill(int32_t frames) {
    const int32_t wanted = static_cast<int32_t>(std::min<int64_t>(m_history->Missing(frames), kBlockFrames));
    m_source->Read(m_block.data(), wanted);
    m_history->Append(m_block.data(), wanted);
}

// The wrapped source's position, less the frames that were read but lie at or behind the place of the next
// output frame; the phase is that frame's fraction.
int32_t LSRCConvertRate::GetPosition() const {
    if (IsError()) return 0;
    const int64_t place = int64_t{m_source->GetPosition()} - (m_history->Held() - kReach);
    return m_filter->ToOutput(Saturate(place), m_history->Phase());
}

int32_t LSRCConvertRate::GetLength() const {
    if (IsError()) return 0;  // it delivers nothing, so a reader is at the end already
    // Ask in this order: once a source has stopped growing, its length is final.
    const int32_t reach = IsGrowing() ? kReach : 0;
    return m_filter->ToOutput(std::max(m_source->GetLength() - reach, 0));
}

// The next Read fetches the frames of the window: the frames behind the present end of a growing source must
// not be read before they exist.
void LSRCConvertRate::Seek(int32_t frame) {
    if (IsError()) return;
    frame = Clamp(frame, 0, GetLength());
    const int32_t first = m_filter->ToInput(frame) - kReach;
    m_source->Seek(std::max(first, 0));
    m_history->Restart(std::max(-first, 0), m_filter->PhaseOf(frame));
}
