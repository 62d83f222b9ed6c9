#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "audio/convert/LBestJoin.h"
#include "audio/convert/LFade.h"
#include "audio/stream/LFilterSource.h"

// Plays a source slower or faster at the speaker's own pitch, by overlap and add: segments of 20 ms, each
// begun where the wave best continues the one before, within 8 ms of where the speed would have it.
// Positions and lengths are frames of what it delivers; ToSourceFrame and FromSourceFrame convert.
// While the wrapped source grows, GetLength() is what can be made from what is there, and nothing is read
// beyond that. What is delivered after a Seek depends on its position alone.
class LSpeedSource final : public LFilterSource {
public:
    static constexpr int32_t kSlowPercent = 70;
    static constexpr int32_t kNormalPercent = 100;
    static constexpr int32_t kFastPercent = 150;
    static constexpr int32_t kSlowestPercent = 50;
    static constexpr int32_t kFastestPercent = 200;

    // The source itself at 100 percent or when it has an error, otherwise wrapped at its present position.
    // percent is held between kSlowestPercent and kFastestPercent.
    static LSoundSource OpenSource(const LSoundSource& source, int32_t percent);

    // The wrapped source's frame that is heard at a frame of ours, and back: the first frame of ours at which
    // it has been reached. Below normal speed there and back is where one started, above it up to one frame
    // later, so who names a place in the wrapped source holds it to its length. Pure arithmetic: any thread.
    static int32_t ToSourceFrame(int32_t frame, int32_t percent);
    static int32_t FromSourceFrame(int32_t sourceFrame, int32_t percent);

    // The way in is OpenSource.
    LSpeedSource(const LSoundSource& source, int32_t percent);

    void Read(int32_t* samples, int32_t frames) override;
    int32_t GetPosition() const override { return m_position; }
    int32_t GetLength() const override;
    void Seek(int32_t frame) override;

private:
    void MakeSegment();
    void ContinueFrom(int64_t start);
    void BeginAt(int64_t start);
    int64_t NextStart();
    void Fill(int64_t from, int64_t to);
    int32_t* InWindow(int64_t frame) { return m_window.data() + Values(frame - m_windowStart); }
    int32_t* Tail() { return m_segment.data() + Values(m_hop); }
    size_t Values(int64_t frames) const { return static_cast<size_t>(frames) * GetChannels(); }

    const int32_t m_percent;
    const int32_t m_hop;    // frames from one segment to the next
    const int32_t m_reach;  // how far a segment may begin from its place
    LFade m_fade;
    const int32_t m_lead;  // puts the middle of a segment, rather than its beginning, where the speed has it
    LBestJoin m_join;

    std::vector<int32_t> m_segment;  // a hop to deliver, then what fades into the next segment
    int64_t m_segmentAt = 0;         // the frame of ours at which it begins
    bool m_hasSegment = false;
    std::vector<int32_t> m_tail;  // what fades into the segment being made

    std::vector<int32_t> m_window;  // the wrapped source's samples around the place
    int64_t m_windowStart = 0;      // the first of them
    int32_t m_position = 0;
};
