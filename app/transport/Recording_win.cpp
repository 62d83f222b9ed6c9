#include "app/transport/Recording_win.h"

#include <mmsystem.h>

#include "app/transport/MixerLines_win.h"
#include "audio/device/LMixer_win.h"
#include "audio/stream/LSoundTime.h"
#include "audio/wave/LDeferredSink.h"
#include "audio/wave/LInsertWave.h"
#include "audio/wave/LRewriteWave.h"
#include "base/LArith.h"
#include "base/LFile.h"
#include "base/LTime.h"
#include "base/LTrace.h"
#include "res/Ids.h"
#include "store/DictationStore.h"
#include "store/SettingsKeys.h"
#include "store/SoundInput.h"

// Everything that can fail is tried before the old audio is touched: read it, rewrite it beside itself when
// its layout is not ours, open it for writing (LDeferredSink), and only then the device. The sink cuts the
// old recording when the first block arrives; a device that starts and delivers nothing, or voice activation
// that hears no voice, changes nothing.
// An insertion is recorded into a temporary file and merged when it has ended (LInsertWave). A note beside
// the dictation (PendingInsert) tells of the temporary file from before its first sound; whatever happens in
// between, the next start finds the recording and asks. Recording in place behind the dictation's end and
// turning the two passages afterwards was rejected: until then the dictation would play in the wrong order.
// A file that holds no audio is renamed, not overwritten, since it may be all that is left of a dictation.
// After the end, length and completeness are read from the closed file and not taken from the counters: a
// full disk shows itself only there.

namespace {

constexpr char kNoDevice[] =
    "Unable to start record device.\n\n"
    "This might mean you do not have a sound card installed or the sound card is being used by another "
    "application. Please check the Hardware Settings.";
constexpr char kCannotOpen[] =
    "Unable to record onto this dictation.\n\n"
    "Its audio file cannot be written. It may be open in another program or be write-protected. Nothing was "
    "changed.";
constexpr char kCannotInsert[] =
    "Unable to insert into this dictation.\n\n"
    "No temporary file could be made for the insertion. The disk may be full or write-protected. Nothing was "
    "changed.";
constexpr char kUnknownFormat[] =
    "Unable to record onto this dictation.\n\n"
    "Its audio is in a format that this computer cannot read. Please record into a new dictation. Nothing "
    "was changed.";
constexpr char kWriteFailed[] =
    "The recording was stopped because it could no longer be written. The disk might be full.\n\n"
    "Everything recorded until then is kept. Please make room on the disk before you go on.";
constexpr char kDeviceLost[] =
    "The recording was stopped because the sound device no longer answers.\n\n"
    "Everything recorded until then is kept. Please check that the microphone or sound card is connected "
    "before you go on.";

}  // namespace

Recording::Recording(const AppState& state, LModalRunner& runner, Owner& owner)
    : m_state(state), m_runner(runner), m_owner(owner), m_recorder(*this) {}

Recording::~Recording() {
    LeaveInserts(true);
    Stop();
}

bool Recording::Start(const DictationFiles& files, RecordMode mode, int32_t positionMs) {
    Target target;
    target.files = files;
    bool started = PrepareTarget(mode, positionMs, target) && OpenSink(target);
    m_target = target;
    if (started) {
        if (Settings::Read(m_state.data.settingsFile, SettingsKeys::kRecordTone))
            PlaySoundA(MAKEINTRESOURCEA(IDW_RECORDTONE), LInstance(),
                       SND_RESOURCE | SND_ASYNC | SND_NODEFAULT);
        started = StartRecorder();
    }
    if (!started) PutBackSetAside();
    if (!started) DropInsert();
    return started;
}

bool Recording::PrepareTarget(RecordMode mode, int32_t positionMs, Target& target) {
    if (!ReadExisting(target)) return false;
    if (target.info.NeedsRewrite() && !Rewrite(target)) return false;
    target.start = PlanRecording(mode, positionMs, target.info);
    return !target.start.isInsert || PrepareInsert(target);
}

// Makes the temporary file and notes it beside the dictation.
bool Recording::PrepareInsert(Target& target) {
    target.insert = {LFile::MakeTemporary("tmp"), target.start.frames};
    if (!target.insert.recording.Empty() && target.insert.Write(target.files)) return true;
    LTrace("Recording::PrepareInsert unable to make the temporary file");
    LFile::Delete(target.insert.recording);
    m_runner.Tell(kCannotInsert);
    return false;
}

// Forgets an insertion into which nothing was recorded.
void Recording::DropInsert() {
    if (m_target.insert.recording.Empty()) return;
    // The note stays with a recording that is held: the next start finds it done.
    const LPath& recording = m_target.insert.recording;
    if (LFile::Delete(recording, kMoveWaitMs) || LFile::IsAbsent(recording))
        PendingInsert::Forget(m_target.files);
    m_target.insert = PendingInsert();
}

// Finds format and length of the existing audio, or those of a new dictation. False after the user was told
// why the audio cannot be recorded onto.
bool Recording::ReadExisting(Target& target) {
    const LPath& audio = target.files.audio;
    LWaveInfo& info = target.info;
    info.format = NewRecordingFormat(m_state.user.userFile);
    info.isOurLayout = true;
    {
        LFile file(audio, LFile::Open::Read);
        uint8_t first = 0;
        const bool isHeld =
            file.IsOpen() ? file.Size() != 0 && !file.ReadExact({&first, 1}) : !LFile::IsAbsent(audio);
        if (isHeld) {
            m_runner.Tell(kCannotOpen);
            return false;
        }
        if (!file.IsOpen() || file.Size() == 0) return true;
        if (LWaveInfo found; LWaveFile::ReadInfo(file, found)) {
            if (!LRewriteWave::CanRead(found)) {
                m_runner.Tell(kUnknownFormat);
                return false;
            }
            info = found;
            return true;
        }
    }
    target.setAside = SetAside(target.files.audio);
    if (!target.setAside.Empty()) return true;
    m_runner.Tell(kCannotOpen);
    return false;
}

// Converts audio of another layout or format into ours, beside itself, under a progress dialog.
bool Recording::Rewrite(Target& target) {
    LRewriteWave rewrite(target.files.audio);
    const ProcessResult result = m_runner.RunProcess(rewrite, "Preparing Dictation");
    if (!m_runner.MayGoOn() || result != ProcessResult::Done) return false;
    if (LWaveFile::ReadInfo(target.files.audio, target.info)) return true;
    m_runner.Tell(kCannotOpen);
    return false;
}

bool Recording::OpenSink(const Target& target) {
    const LWaveFileFormat& format = target.info.format;
    const bool isInsert = target.start.isInsert;
    m_sink = LDeferredSink::Open(isInsert ? target.insert.recording : target.files.audio,
                                 isInsert ? 0 : target.start.frames, format.BitsPerSample(),
                                 static_cast<uint8_t>(format.Channels()),
                                 static_cast<int32_t>(format.SampleRate()));
    if (m_sink && !m_sink->IsError()) return true;
    m_sink.Reset();
    m_runner.Tell(kCannotOpen);
    return false;
}

bool Recording::StartRecorder() {
    const LPath& settings = m_state.data.settingsFile;
    MixerLines lines;
    const SoundInput input = GetSoundIn(settings, lines);
    LMixer::SetInputChannel(input.device, input.line, Settings::Read(settings, SettingsKeys::kRecordVolume));
    m_recorder.SetDevice(input.device);

    m_isRunning = true;
    m_hasHeard = false;
    m_startTick = LTickMs();
    const int8_t threshold = Settings::Read(settings, SettingsKeys::kVoiceActivate);
    const int32_t beginsAtMs = m_target.start.isInsert ? 0 : m_target.start.positionMs;
    const int32_t maximumMs = Saturate(int64_t{beginsAtMs} + kMaximumRecordingMs);
    if (!m_recorder.Start(m_sink, kHangTimeMs, threshold, maximumMs, 0)) {
        m_isRunning = false;
        m_isWaiting = false;
        m_sink.Reset();
        PutBackSetAside();
        m_runner.Box(kNoDevice, "Sound Device Error", MB_OK | MB_ICONEXCLAMATION);
        return false;
    }
    return true;
}

// Undoes the renaming when nothing was recorded.
void Recording::PutBackSetAside() {
    if (m_target.setAside.Empty() || LFile::Exists(m_target.files.audio)) return;
    LFile::Move(m_target.setAside, m_target.files.audio);
    m_target.setAside = LPath();
}

void Recording::Stop() {
    m_recorder.Stop();
}

bool Recording::HearsNothing() const {
    return HasHeardNothing() && LTickMs() - m_startTick >= kNoVoiceMs;
}

void Recording::OnRecording() {
    m_hasHeard = true;
    m_isWaiting = false;
    m_owner.RecordingWaits(false);
}

void Recording::OnWaiting() {
    m_isWaiting = true;
    m_owner.RecordingWaits(true);
}

void Recording::OnTime(int32_t timeMs) {
    m_owner.RecordingPosition(m_target.start.isInsert ? m_target.start.positionMs + timeMs : timeMs);
}

void Recording::OnLevel() {
    const int8_t left = m_recorder.LevelDb(0);
    m_owner.RecordingLevel(left, m_recorder.GetLevelChannels() > 1 ? m_recorder.LevelDb(1) : left);
}

const char* CloseRecording(LSoundSink& sink, LSoundRecorder::Ending ending, bool recordedAnything,
                           const LPath& file) {
    const bool isError = sink->IsError();
    const int32_t frames = sink->GetFrames();
    sink.Reset();  // closes the file
    if (isError) return kWriteFailed;
    if (ending == LSoundRecorder::Ending::DeviceLost) return kDeviceLost;
    return recordedAnything && !LWaveFile::IsComplete(file, frames) ? kWriteFailed : nullptr;
}

void Recording::OnStopped(int32_t) {
    if (!m_isRunning) return;
    m_isRunning = false;
    m_isWaiting = false;
    Outcome outcome{.files = m_target.files};
    const bool isInsert = m_target.start.isInsert;
    const bool recordedAnything = m_sink->GetFrames() > (isInsert ? 0 : m_target.start.frames);
    const int32_t frames = m_sink->GetFrames();
    const int32_t rate = m_sink->GetSampleRate();
    const LPath& recorded = isInsert ? m_target.insert.recording : outcome.files.audio;
    outcome.trouble = CloseRecording(m_sink, m_recorder.GetEnding(), recordedAnything, recorded);
    PutBackSetAside();
    if (isInsert && !recordedAnything) DropInsert();
    const bool isInPlace = !isInsert || (recordedAnything && MergeInsert(outcome));
    outcome.isEmpty = !recordedAnything;
    outcome.lengthMs = LWaveFile::LengthMs(outcome.files.audio);
    // The next recording continues where this one ended: at the end of the file, or of what was inserted.
    outcome.positionMs = m_target.start.positionMs;
    if (recordedAnything && isInPlace)
        outcome.positionMs =
            isInsert ? Saturate(int64_t{outcome.positionMs} + FramesToMs(frames, rate)) : outcome.lengthMs;
    m_owner.RecordingEnded(outcome);
}

// Merges the recording into its dictation; what cannot be merged now waits.
bool Recording::MergeInsert(Outcome& outcome) {
    const PendingInsert insert = m_target.insert;
    LInsertWave merge(outcome.files.audio, insert.atFrame, insert.recording);
    const bool isMerged =
        !m_leavesInserts && m_runner.RunUnaskedProcess(merge, "Insert Recording") == ProcessResult::Done;
    outcome.isInsertKept = !isMerged;
    if (isMerged) DropInsert();
    return isMerged;
}
