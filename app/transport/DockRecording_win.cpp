#include "app/transport/DockRecording_win.h"

#include "app/transport/RecordPlan.h"
#include "app/transport/Recording_win.h"
#include "audio/convert/LRecordSpeed.h"
#include "audio/device/LMixer_win.h"
#include "audio/wave/LDeferredSink.h"

// The recorder feeds LRecordSpeed, and that the file: LDeferredSink leaves the file alone until the first
// sound, which is what lets a new beginning keep the recording before it. The handle on the file is only
// looked into when the recorder has let go of it.

void DockRecording::Start(const LPath& audio, int32_t sampleRate, const Choice& choice, int8_t volumeDb) {
    Stop();
    m_audio = audio;
    m_choice = choice;
    m_hasHeard = false;
    m_playedMs = 0;
    m_quiet = {};
    m_state = Begin(sampleRate, volumeDb);
    if (!IsRunning()) m_file.Reset();
    m_owner.DockChanged();
}

DockState DockRecording::Begin(int32_t sampleRate, int8_t volumeDb) {
    if (!m_choice.percent) return DockState::BadSpeed;
    SetVolume(volumeDb);
    m_recorder.SetDevice(m_choice.input.device);
    m_file = LDeferredSink::Open(m_audio, 0, 16, 1, sampleRate);
    if (!m_file || m_file->IsError()) return DockState::NoFile;
    const LSoundSink sink = LRecordSpeed::OpenSink(*m_choice.percent, m_file);
    if (!sink || sink->IsError()) return DockState::BadSpeed;
    const bool isStarted = m_recorder.Start(sink, kHangTimeMs, m_choice.startDb, kMostDockMs, 0);
    return isStarted ? DockState::Waits : DockState::NoDevice;
}

void DockRecording::GiveUp() {
    Stop();
    m_state = DockState::NoDevice;
    m_owner.DockChanged();
}

void DockRecording::OnLevel() {
    m_quiet.Level(m_recorder.LevelDb(0));
    m_owner.DockLevel(m_recorder.LevelDb(0));
}

void DockRecording::Tick() {
    if (!m_quiet.Tick() || !IsRunning() || m_state != DockState::Waits) return;
    m_state = DockState::TooQuiet;
    m_owner.DockChanged();
}

void DockRecording::SetVolume(int8_t volumeDb) const {
    LMixer::SetInputChannel(m_choice.input.device, m_choice.input.line, volumeDb);
}

void DockRecording::OnRecording() {
    m_hasHeard = true;
    m_state = DockState::Records;
    m_owner.DockChanged();
}

// The recorder has let go of the sink: what LRecordSpeed still held is in the file.
void DockRecording::OnStopped(int32_t) {
    const LSoundRecorder::Ending ending = m_recorder.GetEnding();
    const char* const trouble = CloseRecording(m_file, ending, m_file->GetFrames() > 0, m_audio);
    if (ending == LSoundRecorder::Ending::MaxTime) m_state = DockState::TimeIsUp;
    if (trouble != nullptr) m_state = DockState::HasFailed;
    m_owner.DockLevel(kSilenceDb);
    m_owner.DockChanged();
    if (trouble != nullptr) m_owner.DockTrouble(trouble);
}
