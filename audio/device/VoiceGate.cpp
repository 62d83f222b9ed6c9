#include "audio/device/VoiceGate.h"

#include <algorithm>

#include "audio/stream/LSoundTime.h"
#include "base/LArith.h"
#include "base/LTrace.h"

// A gate with hysteresis that decides once for each block of 100 ms, by its peak. It writes first and cuts
// afterwards: the silence of the hang time goes into the sink and is truncated when it proves to be a pause.
// So every tenth of a second is on the disk at once, also the last one before a crash. Only one block is kept
// while waiting, for the onset of the next word.
// The thread around it (LSoundRecorder) only moves buffers, so that all decisions can be tested without a
// device.

static constexpr int32_t kStopBelowStartDb = 5;     // the hysteresis, against switching to and fro
static constexpr int32_t kRestBeforePauseMs = 450;  // silence that stays where the recording pauses
static constexpr int32_t kRestBeforeStopMs = 50;    // silence that stays at its end

void VoiceGate::Start(const LSoundSink& sink, const Settings& settings) {
    m_sink = sink;
    m_settings = settings;
    m_state = settings.recordAtOnce ? State::Recording : State::Waiting;
    m_stopLevelDb =
        static_cast<int8_t>(Clamp<int32_t>(settings.startLevelDb - kStopBelowStartDb, kSilenceDb, kMaxDb));
    m_maxTimeReached = false;
    m_lastLoudMs = RecordedMs();
    m_voiceDb = kSilenceDb;
    m_levels.fill(kSilenceDb);
    m_previous.clear();
}

int32_t VoiceGate::RecordedMs() const {
    return m_sink ? FramesToMs(m_sink->GetFrames(), m_sink->GetSampleRate()) : 0;
}

void VoiceGate::Take(std::span<const int32_t> block) {
    Measure(block);
    if (m_state == State::Recording)
        Record(block);
    else if (m_state == State::Waiting)
        Await(block);
}

void VoiceGate::TakeLate(std::span<const int32_t> block) {
    Measure(block);
    if (m_state != State::Recording) return;
    Write(block);
    if (m_voiceDb >= m_stopLevelDb) m_lastLoudMs = RecordedMs();
}

void VoiceGate::Record(Block block) {
    const int32_t framesBefore = m_sink->GetFrames();
    Write(block);
    const int32_t recordedMs = RecordedMs();
    if (m_voiceDb >= m_stopLevelDb)
        m_lastLoudMs = recordedMs;
    else if (recordedMs - m_lastLoudMs > m_settings.hangTimeMs)
        Pause(block, framesBefore);
    if (m_settings.maxTimeMs > 0 && recordedMs > m_settings.maxTimeMs && !m_maxTimeReached) {
        LTrace("LSoundRecorder::ThreadFunction Stop because MaxTime reached");
        m_maxTimeReached = true;
    }
}

void VoiceGate::Pause(Block block, int32_t framesBefore) {
    LTrace("LSoundRecorder::ThreadFunction VoiceActivatedStop RECORDING->WAITING");
    CutAfterLastLoud(kRestBeforePauseMs);
    m_state = State::Waiting;
    // After a short hang time the cut may leave the block's second half in the file. It must not be written
    // twice.
    if (m_sink->GetFrames() <= framesBefore + static_cast<int32_t>(HalfFrames(block)))
        m_previous.assign(block.begin(), block.end());
    else
        m_previous.clear();
}

void VoiceGate::Await(Block block) {
    if (m_voiceDb < m_settings.startLevelDb) {
        m_previous.assign(block.begin(), block.end());
        return;
    }
    LTrace("LSoundRecorder::WindowProcWIMData VoiceActivatedStart WAITING->RECORDING");
    const Block firstHalf = block.first(HalfFrames(block) * m_sink->GetChannels());
    if (!m_previous.empty() && VoiceDb(firstHalf) >= m_settings.startLevelDb) Write(SecondHalf(m_previous));
    Write(block);
    m_previous.clear();
    m_state = State::Recording;
    m_lastLoudMs = RecordedMs();
}

int32_t VoiceGate::Stop() {
    if (!m_sink) return 0;
    CutAfterLastLoud(kRestBeforeStopMs);
    const int32_t endMs = RecordedMs();
    m_sink.Reset();
    m_lastLoudMs = 0;
    m_state = State::Stopped;
    return endMs;
}

void VoiceGate::CutAfterLastLoud(int32_t restMs) {
    m_sink->Truncate(MsToFrames(Saturate(int64_t{m_lastLoudMs} + restMs), m_sink->GetSampleRate()));
}

void VoiceGate::Write(Block block) {
    m_sink->Write(block.data(), static_cast<int32_t>(block.size() / m_sink->GetChannels()));
}

void VoiceGate::Measure(Block block) {
    const uint8_t channels = m_sink->GetChannels();
    for (uint8_t i = 0; i < channels; ++i) m_levels[i] = ChannelDb(block, channels, i);
    m_voiceDb = channels > 1 ? std::max(m_levels[0], m_levels[1]) : m_levels[0];
}

int8_t VoiceGate::VoiceDb(Block block) const {
    const uint8_t channels = m_sink->GetChannels();
    const int8_t left = ChannelDb(block, channels, 0);
    return channels > 1 ? std::max(left, ChannelDb(block, channels, 1)) : left;
}

VoiceGate::Block VoiceGate::SecondHalf(Block block) const {
    return block.subspan(HalfFrames(block) * m_sink->GetChannels());
}
