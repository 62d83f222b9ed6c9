#include "audio/convert/WindSource.h"

#include <algorithm>
#include <cmath>

#include "base/LArith.h"

// Each tenth of a second of output is a snippet of 120 ms of the source, of which the first 20 ms are a
// cross-fade with the end of the snippet before. The place of snippet n in the source is the integral of the
// speed over n tenths of a second. So a snippet can be made alone: a Seek needs no history, and any thread
// can compute the place that is heard at a frame.
// Placing snippets by similarity, as LSpeedSource does, was rejected, since it ties each snippet to all
// before it.

namespace {

constexpr int kSpeedBits = 16;
constexpr int32_t kMaxRampFrames = 1 << 24;

// A tenth of a second from join to join and a fiftieth for the join: a snippet is 120 ms long, of which 80 ms
// are heard alone. Shorter snippets cut syllables up, longer ones hide how fast the tape runs.
constexpr int32_t kStepsPerSecond = 10;
constexpr int32_t kFadesPerSecond = 50;

int32_t FixedSpeed(double speed) {
    return static_cast<int32_t>(std::lround(Clamp(std::fabs(speed), 1.0, 64.0) * (1 << kSpeedBits)));
}

int32_t RampFrames(int32_t rampMs, int32_t sampleRate) {
    return static_cast<int32_t>(
        Clamp<int64_t>(int64_t{rampMs} * sampleRate / 1000, 0, int64_t{kMaxRampFrames}));
}

}  // namespace

WindSource::WindSource(const LSoundSource& source, double initialSpeed, double finalSpeed, int32_t rampMs)
    : LFilterSource(source),
      m_isForward(initialSpeed >= 0),
      m_initialSpeed(FixedSpeed(initialSpeed)),
      m_speedChange(FixedSpeed(finalSpeed) - m_initialSpeed),
      m_rampFrames(RampFrames(rampMs, GetSampleRate())),
      m_stepFrames(std::max(GetSampleRate() / kStepsPerSecond, 1)),
      m_start(Clamp(source->GetPosition(), 0, std::max(source->GetLength(), 0))),
      m_distance(m_isForward ? std::max(source->GetLength(), 0) - m_start : m_start),
      m_snippetFrames(std::min(m_stepFrames + GetSampleRate() / kFadesPerSecond, m_distance)),
      m_lastSnippet(CountSteps()),
      m_length(m_lastSnippet * m_stepFrames + m_snippetFrames),
      m_fade(std::min(GetSampleRate() / kFadesPerSecond, m_snippetFrames / 2), GetChannels()),
      m_snippet(Values(m_snippetFrames)),
      m_tail(Values(m_fade.Frames())) {}

// Source frames between the start and the read position after that many output frames, were there no end.
// Over the ramp the speed follows 3x^2 - 2x^3, which begins and ends level; its integral is x^3 - x^4 / 2.
// Integers only, so that every build cuts at the same frames.
int32_t WindSource::Travelled(int64_t frame) const {
    int64_t gained = m_speedChange * (2 * frame - m_rampFrames) / 2;
    if (frame < m_rampFrames) {
        const int64_t x = (frame << 30) / m_rampFrames;
        const int64_t square = (x * x) >> 30;
        const int64_t integral = ((square * x) >> 30) - ((square * square) >> 31);
        gained = (m_speedChange * ((integral * m_rampFrames) >> 14)) >> 16;
    }
    return Saturate((m_initialSpeed * frame + gained) >> kSpeedBits);
}

// The number of whole steps before the last snippet begins, by binary search. The rest lengthens the last
// step; shortening it would play the same words twice.
int32_t WindSource::CountSteps() const {
    const int32_t toLast = m_distance - m_snippetFrames;
    int32_t low = 0, high = toLast / m_stepFrames;  // the speed is at least 1
    while (low < high) {
        const int32_t middle = high - (high - low) / 2;
        if (Travelled(int64_t{middle} * m_stepFrames) <= toLast)
            low = middle;
        else
            high = middle - 1;
    }
    return low;
}

// The source frame at which a snippet begins; the last one is moved to the very end or start.
int32_t WindSource::SnippetStart(int32_t snippet) const {
    const int32_t toLast = m_distance - m_snippetFrames;
    const int32_t moved = snippet < m_lastSnippet ? Travelled(int64_t{snippet} * m_stepFrames) : toLast;
    return m_isForward ? m_start + moved : toLast - moved;
}

int32_t WindSource::ToSourceFrame(int32_t frame) const {
    if (frame >= m_length) return m_isForward ? m_start + m_distance : 0;
    const int32_t snippet = std::min(std::max(frame, 0) / m_stepFrames, m_lastSnippet);
    const int32_t start = SnippetStart(snippet);
    if (!m_isForward) return start;
    const int32_t heard = start + std::max(frame, 0) - snippet * m_stepFrames;
    return snippet < m_lastSnippet ? std::min(heard, SnippetStart(snippet + 1)) : heard;
}

void WindSource::ReadSource(int32_t start, int32_t* samples, int32_t frames) {
    m_source->Seek(start);
    while (frames > 0) {
        const int32_t count = std::min(frames, kBlockFrames);
        m_source->Read(samples, count);
        samples += Values(count);
        frames -= count;
    }
}

// Reads a snippet and fades it in. The tail of the snippet before is at hand when that was the last one made,
// and is read otherwise. The first snippet rises from silence, the last one fades out.
void WindSource::MakeSnippet(int32_t snippet) {
    int32_t* const tailInSnippet = m_snippet.data() + (m_snippet.size() - m_tail.size());
    if (snippet == 0)
        std::fill(m_tail.begin(), m_tail.end(), 0);
    else if (m_ready == snippet - 1)
        std::copy_n(tailInSnippet, m_tail.size(), m_tail.begin());
    else
        ReadSource(SnippetStart(snippet - 1) + m_stepFrames, m_tail.data(), m_fade.Frames());

    ReadSource(SnippetStart(snippet), m_snippet.data(), m_snippetFrames);
    m_fade.Cross(m_tail.data(), m_snippet.data());
    if (snippet == m_lastSnippet) m_fade.Out(tailInSnippet);
    m_ready = snippet;
}

void WindSource::Read(int32_t* samples, int32_t frames) {
    while (frames > 0 && m_position < m_length) {
        const int32_t snippet = std::min(m_position / m_stepFrames, m_lastSnippet);
        if (snippet != m_ready) MakeSnippet(snippet);
        const int32_t at = m_position - snippet * m_stepFrames;
        const int32_t present = (snippet < m_lastSnippet ? m_stepFrames : m_snippetFrames) - at;
        const int32_t count = std::min(frames, present);
        std::copy_n(m_snippet.data() + Values(at), Values(count), samples);
        samples += Values(count);
        frames -= count;
        m_position += count;
    }
    std::fill_n(samples, Values(frames), 0);
    m_position = Saturate(int64_t{m_position} + frames);
}

void WindSource::Seek(int32_t frame) {
    m_position = Clamp(frame, 0, m_length);
}
