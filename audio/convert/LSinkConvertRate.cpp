#include "audio/convert/LSinkConvertRate.h"

#include <algorithm>
#include <array>
#include <span>

#include "base/LArith.h"
#include "base/LTrace.h"

// Rate conversion that pushes: each Write appends to the history (LSincHistory), and every output frame whose
// window is full goes into a block, which is passed on when it is full and at the end. The destructor appends
// silence, so that the last input frames get their output too.
// Truncate has to undo: it finds the first output frame behind the cut, takes back the buffered output, cuts
// the other sink where output was passed on already, and moves the history's window back to that frame.
// Frames that the other sink held at first are counted apart (m_sinkFrames, m_firstFrame), so a cut never
// reaches them.

static constexpr int32_t kTaps = 15;
static constexpr int32_t kReach = kTaps / 2;
static constexpr int32_t kCapacity = kBlockFrames + kTaps;
// What 16 bits hold: the filter overshoots where the input is cut off at full scale, and a file that wraps
// would crack.
static constexpr int32_t kLowest = -0x80000, kHighest = 0x7FFF7;
static_assert(ToPcm16(kLowest) == INT16_MIN && ToPcm16(kHighest) == INT16_MAX);
// Silence that follows the last input frame, so that the output frames at its end can be made.
static constexpr std::array<int32_t, kReach + 1> kSilence{};

LSoundSink LSinkConvertRateBase::OpenSink(const LSoundSink& sink, int32_t inputRate) {
    if (sink && sink->GetSampleRate() == inputRate) return sink;
    return LSoundSink::Make<LSinkConvertRateBase>(sink, inputRate);
}

LSinkConvertRateBase::LSinkConvertRateBase(const LSoundSink& sink, int32_t inputRate)
    : LFilterSink(sink, inputRate) {
    if (GetChannels() != 1) {
        LTrace("LSinkConvertRateBase::LSinkConvertRateBase can only be used on mono streams");
        SetError();
    }
    if (sink && !LSincFilter::CanConvert(inputRate, sink->GetSampleRate())) {
        LTrace("LSinkConvertRateBase::LSinkConvertRateBase rates too far apart");
        SetError();
    }
    if (IsError()) return;
    m_filter.emplace(inputRate, sink->GetSampleRate(), kTaps);
    m_history.emplace(*m_filter, uint8_t{1}, kCapacity, kTaps + 1);
    m_history->Restart(kReach, 0);
    m_output.resize(kBlockFrames);
    m_sinkFrames = sink->GetFrames();
    m_firstFrame = m_filter->ToInput(m_sinkFrames);
    SetFrames(m_firstFrame);
}

LSinkConvertRateBase::~LSinkConvertRateBase() {
    if (!m_history) return;
    Take(kSilence.data(), static_cast<int32_t>(kSilence.size()));
    PassOn();
}

void LSinkConvertRateBase::Write(const int32_t* samples, int32_t frames) {
    if (!m_history || frames < 1) return;
    AddFrames(frames);
    Take(samples, frames);
}

void LSinkConvertRateBase::Take(const int32_t* samples, int32_t frames) {
    while (frames > 0) {
        const int32_t taken = m_history->Append(samples, frames);
        samples += taken;
        frames -= taken;
        while (const int32_t made =
                   m_history->Convert(m_output.data() + m_pending, kBlockFrames - m_pending)) {
            for (int32_t& sample :
                 std::span(m_output).subspan(static_cast<size_t>(m_pending), static_cast<size_t>(made)))
                sample = Clamp(sample, kLowest, kHighest);
            m_pending += made;
            if (m_pending == kBlockFrames) PassOn();
        }
    }
}

void LSinkConvertRateBase::PassOn() {
    if (m_pending > 0) m_sink->Write(m_output.data(), m_pending);
    m_pending = 0;
    if (m_sink->IsError()) SetError();
}

// next is the output frame to be made first afterwards: the one after those made so far, or the first one
// behind the cut. Where the other sink would have to be cut and cannot be, nothing is cut, since the frames
// in the buffers may be speech.
void LSinkConvertRateBase::Truncate(int32_t frames) {
    if (!m_history || frames > GetFrames()) return;
    const int32_t written = GetFrames() - m_firstFrame;
    const int32_t kept = std::max(frames - m_firstFrame, 0);
    const int32_t passedOn = m_sink->GetFrames() - m_sinkFrames;
    const int32_t behindCut = m_filter->OutputsBefore(kept);
    const int32_t next = std::min(behindCut, passedOn + m_pending);
    if (next < passedOn) {
        m_sink->Truncate(m_sinkFrames + next);
        if (m_sink->IsError()) SetError();
        if (m_sink->GetFrames() != m_sinkFrames + next) return;
    }
    m_pending = std::max(next - passedOn, 0);
    m_history->Rewind(written - kept, kept - (m_filter->ToInput(next) - kReach), m_filter->PhaseOf(next));
    SetFrames(m_firstFrame + kept);
}
