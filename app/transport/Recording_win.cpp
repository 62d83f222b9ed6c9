#include "app/transport/Recording_win.h"

#include <mmsystem.h>

#include "audio/device/LMixer_win.h"
#include "audio/wave/LDeferredSink.h"
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

// The range of sampling rates in Hz that is accepted from the settings.
constexpr int32_t kLowestRate = 1000;
constexpr int32_t kHighestRate = 192000;

// The format of a new dictation: 16 bits, mono, at the user's rate.
LWaveFileFormat NewFormat(const LPath& userFile) {
    const int32_t rate = Settings::Read(userFile, UserKeys::kSampleRate);
    const bool usable = rate >= kLowestRate && rate <= kHighestRate;
    return LWaveFileFormat::Pcm(16, 1,
                                static_cast<uint32_t>(usable ? rate : UserKeys::kSampleRate.defaultValue));
}

// The mixer's input lines by name.
class MixerLines final : public InputLines {
public:
    std::vector<std::string> LineNames(int32_t device) override {
        std::vector<std::string> names;
        const int32_t count = LMixer::GetInputChannelCount(device);
        names.reserve(static_cast<size_t>(count));
        for (int32_t i = 0; i < count; ++i) names.push_back(LMixer::GetInputChannelName(device, i));
        return names;
    }
};

}  // namespace

Recording::Recording(const AppState& state, LModalRunner& runner, Owner& owner)
    : m_state(state), m_runner(runner), m_owner(owner), m_recorder(*this) {}

Recording::~Recording() {
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
    return started;
}

bool Recording::PrepareTarget(RecordMode mode, int32_t positionMs, Target& target) {
    if (!ReadExisting(target)) return false;
    if (target.info.NeedsRewrite() && !Rewrite(target)) return false;
    target.start = PlanRecording(mode, positionMs, target.info);
    return true;
}

// Finds format and length of the existing audio, or those of a new dictation. False after the user was told
// why the audio cannot be recorded onto.
bool Recording::ReadExisting(Target& target) {
    const LPath& audio = target.files.audio;
    LWaveInfo& info = target.info;
    info.format = NewFormat(m_state.user.userFile);
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
    target.setAside = SetAsideAudio(target.files);
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
    m_sink = LDeferredSink::Open(target.files.audio, target.start.frames, format.BitsPerSample(),
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
    const int32_t maximumMs = Saturate(int64_t{m_target.start.positionMs} + kMaximumRecordingMs);
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
    return IsWaiting() && !m_hasHeard && LTickMs() - m_startTick >= kNoVoiceMs;
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
    m_owner.RecordingPosition(timeMs);
}

void Recording::OnLevel() {
    const int8_t left = m_recorder.LevelDb(0);
    m_owner.RecordingLevel(left, m_recorder.GetLevelChannels() > 1 ? m_recorder.LevelDb(1) : left);
}

void Recording::OnStopped(int32_t) {
    if (!m_isRunning) return;
    m_isRunning = false;
    m_isWaiting = false;
    Outcome outcome{.files = m_target.files};
    const bool recordedAnything = m_sink->GetFrames() > m_target.start.frames;
    if (m_sink->IsError())
        outcome.trouble = kWriteFailed;
    else if (m_recorder.GetEnding() == LSoundRecorder::Ending::DeviceLost)
        outcome.trouble = kDeviceLost;
    const int32_t frames = m_sink->GetFrames();
    m_sink.Reset();  // closes the file
    if (!outcome.trouble && recordedAnything && !LWaveFile::IsComplete(outcome.files.audio, frames))
        outcome.trouble = kWriteFailed;
    PutBackSetAside();
    outcome.isEmpty = !recordedAnything;
    outcome.lengthMs = LWaveFile::LengthMs(outcome.files.audio);
    // The recorded passage is the end of the file; the next recording continues there.
    outcome.positionMs = recordedAnything ? outcome.lengthMs : m_target.start.positionMs;
    m_owner.RecordingEnded(outcome);
}
