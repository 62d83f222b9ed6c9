#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "audio/convert/LBestJoin.h"
#include "audio/convert/LFade.h"
#include "audio/stream/LFilterSource.h"

// Plays a source slower or faster at the speaker's own pitch, by overlap and add. Segments of 20 ms follow
// each other; each begins where the wave best continues the one before, within 8 ms of the place that the
// speed asks for.
// While the wrapped source grows, GetLength() is the length that can be made from the frames present, and
// nothing is read beyond them. The output after a Seek depends on its position alone.
// Units:  positions and lengths are frames of the output; ToSourceFrame and FromSourceFrame convert. Speeds
//         are percent of normal.
// Source: waveform similarity overlap and add (WSOLA; W. Verhelst and M. Roelands, 1993).
// Thread: one at a time, but for the two static functions.
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

    // ToSourceFrame: the wrapped source's frame that is heard at a frame of the output. FromSourceFrame: the
    // first frame of the output at which a frame of the wrapped source has been reached. There and back is
    // the same frame below normal speed and up to one frame later above it, so a caller holds the result to
    // the wrapped source's length. Pure arithmetic: any thread.
    static int32_t ToSourceFrame(int32_t frame, int32_t percent);
    static int32_t FromSourceFrame(int32_t sourceFrame, int32_t percent);

    // Use OpenSource; public only for the handle's Make().
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
    const int32_t m_reach;  // how far from its place a segment may begin
    LFade m_fade;
    // Shifts a segment so that its middle, not its beginning, lies at the place that the speed asks for.
    const int32_t m_lead;
    LBestJoin m_join;

    std::vector<int32_t> m_segment;  // a hop to deliver, then the tail, which fades into the next segment
    int64_t m_segmentAt = 0;         // output frame at which m_segment begins
    bool m_hasSegment = false;
    std::vector<int32_t> m_tail;  // tail of the segment before, while one is made

    std::vector<int32_t> m_window;  // the wrapped source's samples around the place
    int64_t m_windowStart = 0;      // the first of them
    int32_t m_position = 0;
};
