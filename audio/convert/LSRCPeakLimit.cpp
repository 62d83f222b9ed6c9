#include "audio/convert/LSRCPeakLimit.h"

#include <algorithm>

#include "audio/stream/LKernels.h"
#include "base/LArith.h"

// The sound runs through three blocks of 28.6 ms: one that is delivered and two that follow it. Each block
// has the gain that brings its peak down to the limit. One gain for each block alone would jump where a loud
// block begins, so the gain moves along a straight line: towards the lowest of the three gains, or towards
// their mean with the gain before when that is lower. It falls as soon as a peak comes into sight and rises
// over several blocks.
// Clipping at the limit was rejected: a tone of twice full scale then has overtones only 13 dB below it. A
// limiter stands before a rate converter, which clips, and another behind it, since the filter overshoots
// (LPRSourceToSink).

static int32_t HeldLimit(int32_t limit) {
    return Clamp(limit, 0, LSRCPeakLimit::kHighestLimit);
}

LSoundSource LSRCPeakLimit::OpenSource(const LSoundSource& source, int32_t limit) {
    if (source->IsError() || source->GetLevel() <= HeldLimit(limit)) return source;
    return LSoundSource::Make<LSRCPeakLimit>(source, limit);
}

LSRCPeakLimit::LSRCPeakLimit(const LSoundSource& source, int32_t limit)
    : LFilterSource(source, source->GetSampleRate(), source->GetChannels(), HeldLimit(limit)),
      m_blockFrames(BlockFrames(GetSampleRate())) {
    for (Block& block : m_blocks) block.samples.resize(Values(m_blockFrames));
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
    // A position that has reached the top of its range no longer moves. Ours must not stay short of it, or a
    // reader that reads up to the length would never arrive.
    const int32_t position = m_source->GetPosition();
    if (position == INT32_MAX) return position;
    int64_t delivered = int64_t{position} + m_offset;
    for (const Block& block : m_blocks) delivered -= block.frames;
    return Saturate(delivered);
}

void LSRCPeakLimit::Restart() {
    for (Block& block : m_blocks) {
        block.frames = 0;
        block.gain = kUnityGain;
    }
    m_offset = 0;
    m_gainBefore = kUnityGain;
    Fetch(0);
    m_gain = m_now->gain;
    Aim();
}

void LSRCPeakLimit::Read(int32_t* samples, int32_t frames) {
    while (frames > 0) {
        const bool isNewBlock = m_offset == m_blockFrames;
        if (isNewBlock) NextBlock();
        const int32_t wanted = std::min(frames, m_blockFrames - m_offset);
        const bool hasMore = Fetch(wanted);
        if (isNewBlock || hasMore) Aim();
        const int32_t count = std::min(wanted, m_now->frames - m_offset);
        Deliver(samples, count);
        samples += Values(count);
        frames -= count;
    }
}

void LSRCPeakLimit::NextBlock() {
    Block* const delivered = m_now;
    m_gainBefore = delivered->gain;
    m_now = m_next;
    m_next = m_last;
    m_last = delivered;
    m_last->frames = m_offset = 0;
    m_last->gain = kUnityGain;
}

// Reads ahead as far as the three blocks reach, but of a growing source only as far as it has grown. When no
// frame is left to deliver, the wanted frames are read beyond that end, as silence. Returns whether any frame
// came.
bool LSRCPeakLimit::Fetch(int32_t wantedFrames) {
    int32_t allowed = INT32_MAX;
    if (m_last->frames < m_blockFrames && m_source->IsGrowing()) {
        const int64_t present = int64_t{m_source->GetLength()} - m_source->GetPosition();
        const int32_t needed = m_now->frames > m_offset ? 0 : wantedFrames;
        allowed = Clamp(Saturate(present), needed, INT32_MAX);
    }
    bool hasMore = false;
    for (Block* block : {m_now, m_next, m_last}) {
        const int32_t frames = std::min(allowed, m_blockFrames - block->frames);
        if (frames == 0) continue;
        Append(*block, frames);
        allowed -= frames;
        hasMore = true;
    }
    return hasMore;
}

void LSRCPeakLimit::Append(Block& block, int32_t frames) {
    int32_t* place = block.samples.data() + Values(block.frames);
    m_source->Read(place, frames);
    const uint32_t peak = Kernels().peak(place, Values(frames));
    // A block that is read in parts has the gain of its loudest part.
    block.gain = std::min(block.gain, GainFor(peak));
    block.frames += frames;
}

// limit / peak as a gain of 24 bits, in integers of 32 bits. The divisor is more than peak / 64, so peak
// times gain is less than the limit. The highest limit and the highest peak, 2^31, stay within 32 unsigned
// bits.
int32_t LSRCPeakLimit::GainFor(uint32_t peak) const {
    const uint32_t limit = static_cast<uint32_t>(GetLevel());
    if (peak <= limit) return kUnityGain;
    return static_cast<int32_t>(((limit << 9) / ((peak + 64) >> 6)) << 9);
}

// Sets the ramp for the rest of the block. It ends at or below the gain of this block and of the next one,
// and it begins at or below the gain of this block. Every gain between the two stays there as well, so no
// frame passes louder than the limit.
void LSRCPeakLimit::Aim() {
    const int32_t now = m_now->gain, next = m_next->gain, last = m_last->gain;
    const int32_t target = std::min({now, next, last, (m_gainBefore + now + next + last) / 4});
    m_gain = std::min(m_gain, now);  // lower only when part of this block came late, from a growing source
    const int32_t frames = m_blockFrames - m_offset;
    const int32_t change = target - m_gain;
    m_step = change == 0 ? 0 : change / frames;  // mostly 0, and divisions are slow
    m_gain += change - m_step * frames;
}

void LSRCPeakLimit::Deliver(int32_t* samples, int32_t frames) {
    const int32_t* place = m_now->samples.data() + Values(m_offset);
    if (m_gain == kUnityGain && m_step == 0) {
        std::copy_n(place, Values(frames), samples);
    } else {
        Kernels().ramp({m_gain, m_step, -GetLevel()}, place, samples, static_cast<size_t>(frames),
                       GetChannels());
        m_gain += m_step * frames;
    }
    m_offset += frames;
}
