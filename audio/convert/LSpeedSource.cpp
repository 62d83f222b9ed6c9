#include "audio/convert/LSpeedSource.h"

#include <algorithm>

#include "base/LArith.h"

// Waveform similarity overlap and add. The tail of a segment, the 10 ms behind its hop, is the natural
// continuation of the sound just heard. LBestJoin looks for it around the place that the speed asks for; the
// segment found there is cross-faded with the tail. The speed determines how far the place moves for each
// hop.
// The lengths were found by measuring synthetic speech of two voices: longer segments, fades and reaches
// sounded more like an echo and measured worse. A segment is placed by its middle rather than its beginning,
// which halved the spectral distance to the original. The search is in integers, so every build plays the
// same.

namespace {

// The reach, 8 ms to both sides, holds one period of the deepest voice (62 Hz).
constexpr int32_t kHopMs = 20;
constexpr int32_t kFadeMs = 10;
constexpr int32_t kReachMs = 8;

constexpr int32_t kReadFrames = 2048;  // the least that one Read of the wrapped source asks for

int32_t FramesOf(int32_t ms, int32_t sampleRate) {
    return std::max(static_cast<int32_t>(int64_t{ms} * sampleRate / 1000), 1);
}

}  // namespace

LSoundSource LSpeedSource::OpenSource(const LSoundSource& source, int32_t percent) {
    percent = Clamp(percent, kSlowestPercent, kFastestPercent);
    if (percent == kNormalPercent || source->IsError()) return source;
    return LSoundSource::Make<LSpeedSource>(source, percent);
}

int32_t LSpeedSource::ToSourceFrame(int32_t frame, int32_t percent) {
    return Saturate(int64_t{frame} * percent / 100);
}

int32_t LSpeedSource::FromSourceFrame(int32_t sourceFrame, int32_t percent) {
    return Saturate((int64_t{sourceFrame} * 100 + percent - 1) / percent);
}

LSpeedSource::LSpeedSource(const LSoundSource& source, int32_t percent)
    : LFilterSource(source),
      m_percent(percent),
      m_hop(FramesOf(kHopMs, GetSampleRate())),
      m_reach(FramesOf(kReachMs, GetSampleRate())),
      m_fade(FramesOf(kFadeMs, GetSampleRate()), GetChannels()),
      m_lead((percent - 100) * (m_hop + m_fade.Frames()) / 200),
      m_join(GetSampleRate(), GetChannels(), m_fade.Frames(), m_reach),
      m_segment(Values(m_hop + m_fade.Frames())),
      m_tail(Values(m_fade.Frames())) {
    Seek(FromSourceFrame(source->GetPosition(), percent));
}

int32_t LSpeedSource::GetLength() const {
    // Ask in this order: once a source has stopped growing, its length is final.
    const bool isGrowing = IsGrowing();
    const int32_t length = m_source->GetLength();
    if (!isGrowing) return FromSourceFrame(length, m_percent);
    const int32_t segmentNeeds = std::max(m_lead, 0) + m_reach + m_hop + m_fade.Frames();
    return FromSourceFrame(std::max(length - segmentNeeds, 0), m_percent);
}

void LSpeedSource::Seek(int32_t frame) {
    m_position = Clamp(frame, 0, GetLength());
    m_hasSegment = false;
}

void LSpeedSource::Read(int32_t* samples, int32_t frames) {
    while (frames > 0) {
        if (!m_hasSegment || m_position < m_segmentAt || m_position >= m_segmentAt + m_hop) {
            if (m_position >= GetLength()) break;
            MakeSegment();
        }
        const int64_t at = m_position - m_segmentAt;
        const int32_t count = std::min(frames, static_cast<int32_t>(m_hop - at));
        std::copy_n(m_segment.data() + Values(at), Values(count), samples);
        samples += Values(count);
        frames -= count;
        m_position = Saturate(int64_t{m_position} + count);
    }
    std::fill_n(samples, Values(frames), 0);
    m_position = Saturate(int64_t{m_position} + frames);
}

// Makes the segment that begins at the position: the one that continues the last, or after a jump a first
// one.
void LSpeedSource::MakeSegment() {
    if (m_hasSegment && m_position == m_segmentAt + m_hop)
        ContinueFrom(NextStart());
    else
        BeginAt(ToSourceFrame(m_position, m_percent));
    m_segmentAt = m_position;
    m_hasSegment = true;
}

// The first segment after a jump: taken as it stands, without a fade.
void LSpeedSource::BeginAt(int64_t start) {
    m_window.clear();
    m_windowStart = start;
    m_source->Seek(static_cast<int32_t>(start));
    Fill(start, start + m_hop + m_fade.Frames());
    std::copy_n(InWindow(start), m_segment.size(), m_segment.data());
}

void LSpeedSource::ContinueFrom(int64_t start) {
    std::copy_n(Tail(), m_tail.size(), m_tail.data());
    std::copy_n(InWindow(start), m_segment.size(), m_segment.data());
    m_fade.Cross(m_tail.data(), m_segment.data());
}

// The frame of the wrapped source at which the next segment begins; its samples are then in the window. After
// a jump it is not before the window, which begins at the jump. The last two segments are placed so that the
// material ends with them, the second continuing the first: the end is heard whole, not half-way through a
// fade.
int64_t LSpeedSource::NextStart() {
    const int64_t place =
        std::max(ToSourceFrame(m_position, m_percent) + int64_t{m_lead}, m_windowStart + m_reach);
    Fill(place - m_reach, place + m_reach + m_hop + m_fade.Frames());
    if (!IsGrowing()) {
        const int32_t sourceLength = m_source->GetLength();
        const int64_t left = int64_t{FromSourceFrame(sourceLength, m_percent)} - m_position;
        if (left <= int64_t{2} * m_hop) {
            const int64_t last = Clamp(sourceLength - left, place - m_reach, place + int64_t{2} * m_hop);
            Fill(place - m_reach, last + m_hop + m_fade.Frames());
            return last;
        }
    }
    return place - m_reach + m_join.Find(Tail(), InWindow(place - m_reach));
}

// Moves the window on so that it holds the frames `from` to `to` of the wrapped source, and reads ahead as
// far as frames are present.
void LSpeedSource::Fill(int64_t from, int64_t to) {
    int64_t end = m_windowStart + static_cast<int64_t>(m_window.size() / GetChannels());
    const int64_t start = std::min(from, end);
    m_window.erase(m_window.begin(),
                   m_window.begin() + static_cast<ptrdiff_t>(Values(start - m_windowStart)));
    m_windowStart = start;
    while (end < to) {
        int64_t count = std::max<int64_t>(to - end, kReadFrames);
        if (IsGrowing()) count = std::max(to - end, std::min(count, m_source->GetLength() - end));
        count = std::min<int64_t>(count, kBlockFrames);
        m_window.resize(m_window.size() + Values(count));
        m_source->Read(InWindow(end), static_cast<int32_t>(count));
        end += count;
    }
}
