#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "audio/stream/LFilterSource.h"

// A look-ahead peak limiter: it turns the sound down smoothly before a peak arrives, so that nothing louder
// than the limit leaves it, and up again afterwards. Sound that needs no limiting passes unchanged.
// It never reads a growing source beyond its present end in advance, so sound that is recorded later does not
// turn into silence. With less than the full look-ahead a sudden peak meets a sudden gain, but never passes.
// Units:  the wrapped source's frames; a limit is a magnitude on the 20-bit scale. The look-ahead (57 to 86
//         ms) shows neither as leading silence nor in position and length.
// Seek:   starts anew there. The output equals that of an uninterrupted run wherever both leave the sound as
//         it is. Close behind a peak the gain may differ, since the sound before the place is not known.
// Thread: one at a time.
class LSRCPeakLimit final : public LFilterSource {
public:
    static constexpr int32_t kHighestLimit = 0x3FFFFF;  // products of the ramp stay within 2^22

    // The source itself when its level is at most the limit or it has an error, otherwise wrapped from its
    // present position on. The limit is held between 0 and kHighestLimit and becomes the level.
    static LSoundSource OpenSource(const LSoundSource& source, int32_t limit = kFullScale16);

    // Use OpenSource; public only for the handle's Make().
    LSRCPeakLimit(const LSoundSource& source, int32_t limit);

    void Read(int32_t* samples, int32_t frames) override;
    int32_t GetPosition() const override;
    void Seek(int32_t frame) override;

    // Frames of one block, between two decisions about the gain: about 28.6 ms (1/35 s).
    static int32_t BlockFrames(int32_t sampleRate);

private:
    struct Block {
        std::vector<int32_t> samples;
        int32_t frames;  // present so far; a block is begun when the one before it is full
        int32_t gain;    // 24 fractional bits
    };

    void Restart();
    void NextBlock();
    bool Fetch(int32_t wantedFrames);
    void Append(Block& block, int32_t frames);
    void Aim();
    void Deliver(int32_t* samples, int32_t frames);
    int32_t GainFor(uint32_t peak) const;
    size_t Values(int32_t frames) const { return static_cast<size_t>(frames) * GetChannels(); }

    int32_t m_blockFrames;
    Block m_blocks[3];
    Block* m_now = &m_blocks[0];  // the block being delivered; the next two follow
    Block* m_next = &m_blocks[1];
    Block* m_last = &m_blocks[2];
    int32_t m_offset = 0;      // frames of *m_now already delivered
    int32_t m_gainBefore = 0;  // gain of the block before *m_now
    int32_t m_gain = 0;        // now
    int32_t m_step = 0;        // change of m_gain with each frame
};
