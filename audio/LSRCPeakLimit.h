#pragma once

#include <cstdint>
#include <vector>

#include "audio/LFilterSource.h"

// A look-ahead peak limiter: turns the sound down smoothly before a peak arrives, so that nothing louder than
// the limit leaves it, and up again afterwards. Sound that needs no limiting passes unchanged.
// Units:  the wrapped source's; the look-ahead shows neither as leading silence nor in position and length.
// Seek:   starts anew there. The output equals that of an uninterrupted run wherever both leave the sound as
//         it is; close behind a peak the gain may differ, since what lies before the place is not known.
// A source that grows is never read beyond its present end in advance, so nothing that comes later turns to
// silence. With less than the full look-ahead a sudden peak is met by a sudden gain, but never passes.
class LSRCPeakLimit final : public LFilterSource {
public:
    static constexpr int32_t kHighestLimit = 0x3FFFFF;

    // The source itself when its level is at most the limit or it has an error, otherwise wrapped from its
    // present position on. The limit is held between 0 and kHighestLimit and becomes the level.
    static LSoundSource OpenSource(const LSoundSource& source, int32_t limit = kFullScale16);

    // The way in is OpenSource.
    LSRCPeakLimit(const LSoundSource& source, int32_t limit);

    void Read(int32_t* samples, int32_t frames) override;
    int32_t GetPosition() const override;
    void Seek(int32_t frame) override;

    // Frames between two decisions about the gain: about 28.6 ms.
    static int32_t BlockFrames(int32_t sampleRate);

private:
    // The blocks that are held, in the order of time: the one that is being delivered and the two after it.
    static constexpr int32_t kBlocks = 3;

    void Restart();
    void NextBlock();
    bool Fetch(int32_t wantedFrames);
    void Append(int32_t frames);
    void Aim();
    void Deliver(int32_t* samples, int32_t frames);
    int32_t GainFor(uint32_t peak) const;
    int32_t* Place(int32_t frame);

    int32_t m_blockFrames;
    std::vector<int32_t> m_blocks;  // three blocks that take turns
    int32_t m_firstBlock = 0;       // the one that is being delivered
    int32_t m_held = 0;             // frames present, from the start of that block
    int32_t m_offset = 0;           // frames of that block delivered
    int32_t m_gains[1 + kBlocks];   // of the block before it and of the three, 24 fractional bits
    int32_t m_gain = 0;             // now
    int32_t m_step = 0;             // for each frame
};
