#include "audio/LSRCPeakLimit.h"

#include <algorithm>

#include "audio/LKernels.h"
#include "base/LArith.h"

static int32_t HeldLimit(int32_t limit) {
    return Clamp(limit, 0, LSRCPeakLimit::kHighestLimit);
}

LSoundSource LSRCPeakLimit::OpenSource(const LSoundSource& source, int32_t limit) {
    if (source->IsError() || source->GetLevel() <= HeldLimit(limit)) return source;
    return LSoundSource::Make<LSRCPeakLimit>(source, limit);
}

LSRCPeakLimit::LSRCPeakLimit(const LSoundSource& source, int32_t limit)
    : LFilterSource(source, source->GetSampleRate(), source->GetChannels(), HeldLimit(limit)),
      m_blockFrames(BlockFrames(GetSampleRate())),
      m_blocks(size_t{kBlocks} * GetChannels() * static_cast<size_t>(m_blockFrames)) {
    Restart();
}

int32_t LSRCPeakLimit::BlockFrames(int32_t sampleRate) {
    return Clamp(sampleRate / 35, 20, kBlockFrames);
}

void LSRCPeakLimit::Seek(int32_t frame) {
    m_source->Seek(frame);
    Restart();
}

int32_t LSRCPeakLimit::GetPosition() const {
    // A position that has reached the end of its range no longer moves; nor must ours stay short of it, or
    // whoever reads up to the length would never arrive.
    const int32_t position = m_source->GetPosition();
    return position == INT32_MAX ? position : Saturate(int64_t{position} - (m_held - m_offset));
}

void LSRCPeakLimit::Restart() {
    m_firstBlock = m_held = m_offset = 0;
    std::fill(std::begin(m_gains), std::end(m_gains), kUnityGain);
    Fetch(0);
    m_gain = m_gains[1];
    Aim();
}

void LSRCPeakLimit::Read(int32_t* samples, int32_t frames) {
    while (frames > 0) {
        const bool isNewBlock = m_offset == m_blockFrames;
        if (isNewBlock) NextBlock();
        const int32_t wanted = std::min(frames, m_blockFrames - m_offset);
        const bool hasMore = Fetch(wanted);
        if (isNewBlock || hasMore) Aim();
        const int32_t count = std::min(wanted, m_held - m_offset);
        Deliver(samples, count);
        samples += static_cast<size_t>(count) * GetChannels();
        frames -= count;
    }
}

void LSRCPeakLimit::NextBlock() {
    m_firstBlock = (m_firstBlock + 1) % kBlocks;
    m_held -= m_blockFrames;
    m_offset = 0;
    std::copy(std::begin(m_gains) + 1, std::end(m_gains), std::begin(m_gains));
    m_gains[kBlocks] = kUnityGain;
}

// Reads ahead as far as the blocks reach, of a growing source as far as it has grown; but when nothing is left
// to deliver, what is wanted comes from beyond its end, as silence. Tells whether anything came.
bool LSRCPeakLimit::Fetch(int32_t wantedFrames) {
    int32_t room = kBlocks * m_blockFrames - m_held;
    if (room == 0) return false;
    if (m_source->IsGrowing()) {
        const int64_t present = int64_t{m_source->GetLength()} - m_source->GetPosition();
        const int32_t needed = m_held > m_offset ? 0 : wantedFrames;
        room = Clamp(Saturate(present), needed, room);
    }
    for (int32_t left = room; left > 0;) {
        const int32_t frames = std::min(left, m_blockFrames - m_held % m_blockFrames);
        Append(frames);
        left -= frames;
    }
    return room > 0;
}

void LSRCPeakLimit::Append(int32_t frames) {
    int32_t* place = Place(m_held);
    m_source->Read(place, frames);
    const uint32_t peak = Kernels().peak(place, static_cast<size_t>(frames) * GetChannels());
    int32_t& gain = m_gains[1 + m_held / m_blockFrames];
    gain = std::min(gain, GainFor(peak));  // a block that comes in parts has the gain of its loudest part
    m_held += frames;
}

int32_t* LSRCPeakLimit::Place(int32_t frame) {
    const int32_t block = (m_firstBlock + frame / m_blockFrames) % kBlocks;
    const int32_t frames = block * m_blockFrames + frame % m_blockFrames;
    return m_blocks.data() + static_cast<size_t>(frames) * GetChannels();
}

// The divisor is more than peak / 64, so that peak times gain is less than the limit; the highest limit and
// the highest peak, 2^31, stay within 32 unsigned bits.
int32_t LSRCPeakLimit::GainFor(uint32_t peak) const {
    const uint32_t limit = static_cast<uint32_t>(GetLevel());
    if (peak <= limit) return kUnityGain;
    return static_cast<int32_t>(((limit << 9) / ((peak + 64) >> 6)) << 9);
}

// Sets the ramp for the rest of the block. It begins and ends at or below the gain of this block and of the
// one after it, and a ramp between the two stays there: no frame passes louder than the limit. It falls as
// soon as a peak is in sight and rises over several blocks.
void LSRCPeakLimit::Aim() {
    const auto [before, now, next, last] = m_gains;
    const int32_t mean = (before + now + next + last) / 4;
    const int32_t target = std::min({now, next, last, mean});
    m_gain = std::min(m_gain, now);  // lower only when part of this block came late, from a growing source
    const int32_t frames = m_blockFrames - m_offset;
    m_step = (target - m_gain) / frames;
    m_gain += (target - m_gain) % frames;
}

void LSRCPeakLimit::Deliver(int32_t* samples, int32_t frames) {
    const int32_t* place = Place(m_offset);
    if (m_gain == kUnityGain && m_step == 0) {
        std::copy_n(place, static_cast<size_t>(frames) * GetChannels(), samples);
    } else {
        Kernels().ramp({m_gain, m_step, -GetLevel()}, place, samples, static_cast<size_t>(frames),
                       GetChannels());
        m_gain += m_step * frames;
    }
    m_offset += frames;
}
