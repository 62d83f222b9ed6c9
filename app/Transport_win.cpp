#include "app/Transport_win.h"

#include <mmsystem.h>

#include "app/DictationRow.h"
#include "audio/LDeferredSink.h"
#include "audio/LMixer_win.h"
#include "audio/LRewriteWave.h"
#include "base/LArith.h"
#include "base/LFile.h"
#include "base/LTrace.h"
#include "res/Ids.h"
#include "store/DictationStore.h"
#include "store/SettingsKeys.h"
#include "store/SoundInput.h"
#include "ui/LProgressDialog.h"

namespace {

constexpr char kNoDevice[] =
    "Unable to start record device.\n\nThis might mean you do not have a sound card installed or the sound "
    "card is "
    "being used by another application. Please check the Hardware Settings.";
constexpr char kCannotOpen[] =
    "Unable to record onto this dictation.\n\nIts audio file cannot be written. It may be open in another "
    "program or "
    "be write-protected. Nothing was changed.";
constexpr char kCompressed[] =
    "Unable to record onto this dictation.\n\nIts audio is in a compressed format. Please record into a new "
    "dictation; nothing was changed.";
constexpr char kWriteFailed[] =
    "The recording was stopped because it could no longer be written. The disk might be full.\n\nEverything "
    "recorded "
    "until then is kept. Please make room on the disk before you go on.";

constexpr char kDeviceLost[] =
    "The recording was stopped because the sound device no longer answers.\n\nEverything recorded until then "
    "is kept. "
    "Please check that the microphone or sound card is connected before you go on.";

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

Transport::Transport(const AppState& state, Owner& owner)
    : m_state(state), m_owner(owner), m_recorder(*this) {}

Transport::~Transport() {
    Stop();
}

bool Transport::Record(RecordMode mode) {
    if (m_isRecording || m_isPreparing) {
        LTrace("Transport::Record called but already recording");
        return false;
    }
    m_isPreparing = true;
    const std::optional<DictationFiles> files = m_owner.DictationToRecord();
    Target target;
    bool started = files && PrepareTarget(*files, mode, target) && OpenSink(target);
    m_target = target;
    if (started) {
        if (Settings::Read(m_state.data.settingsFile, SettingsKeys::kRecordTone))
            PlaySoundA(MAKEINTRESOURCEA(IDW_RECORDTONE), LInstance(),
                       SND_RESOURCE | SND_ASYNC | SND_NODEFAULT);
        started = StartRecorder();
    }
    if (!started) PutBackSetAside();
    m_isPreparing = false;
    return started;
}

bool Transport::PrepareTarget(const DictationFiles& files, RecordMode mode, Target& target) {
    target.files = files;
    if (!ReadExisting(target)) return false;
    if (target.info.NeedsRewrite() && !Rewrite(target)) return false;
    target.start = PlanRecording(mode, m_positionMs, target.info);
    return true;
}

// The format and length of what is there, or those of a new dictation.
bool Transport::ReadExisting(Target& target) {
    const LPath& audio = target.files.audio;
    LWaveInfo& info = target.info;
    info.format = NewFormat(m_state.user.userFile);
    info.isOurLayout = true;
    {
        LFile file(audio, LFile::Open::Read);
        if (!file.IsOpen() && LFile::Exists(audio)) {
            Trouble(kCannotOpen);
            return false;
        }
        if (!file.IsOpen() || file.Size() == 0) return true;
        if (LWaveInfo found; LWaveFile::ReadInfo(file, found)) {
            if (!found.IsPcm()) {
                Trouble(kCompressed);
                return false;
            }
            info = found;
            return true;
        }
    }
    target.setAside = SetAsideAudio(target.files);
    if (!target.setAside.Empty()) return true;
    Trouble(kCannotOpen);
    return false;
}

bool Transport::Rewrite(Target& target) {
    LRewriteWave rewrite(target.files.audio);
    const ProcessResult result = LProgressDialog::Run(rewrite, m_owner.OwnerWindow(), "Preparing Dictation");
    if (!m_owner.MayGoOn() || result != ProcessResult::Done) return false;
    if (LWaveFile::ReadInfo(target.files.audio, target.info)) return true;
    Trouble(kCannotOpen);
    return false;
}

bool Transport::OpenSink(const Target& target) {
    const LWaveFileFormat& format = target.info.format;
    m_sink = LDeferredSink::Open(target.files.audio, target.start.frames, format.BitsPerSample(),
                                 static_cast<uint8_t>(format.Channels()),
                                 static_cast<int32_t>(format.SampleRate()));
    if (m_sink && !m_sink->IsError()) return true;
    m_sink.Reset();
    Trouble(kCannotOpen);
    return false;
}

bool Transport::StartRecorder() {
    const LPath& settings = m_state.data.settingsFile;
    MixerLines lines;
    const SoundInput input = GetSoundIn(settings, lines);
    LMixer::SetInputChannel(input.device, input.line, Settings::Read(settings, SettingsKeys::kRecordVolume));
    m_recorder.SetDevice(input.device);

    m_isRecording = true;
    const int8_t threshold = Settings::Read(settings, SettingsKeys::kVoiceActivate);
    const int32_t maximumMs = Saturate(int64_t{m_target.start.positionMs} + kMaximumRecordingMs);
    if (!m_recorder.Start(m_sink, kHangTimeMs, threshold, maximumMs, 0)) {
        m_isRecording = false;
        m_isWaiting = false;
        m_sink.Reset();
        PutBackSetAside();
        LMessageBox(m_owner.OwnerWindow(), kNoDevice, "Sound Device Error", MB_OK | MB_ICONEXCLAMATION);
        return false;
    }
    m_owner.RecordingStarted(m_target.files);
    return true;
}

void Transport::PutBackSetAside() {
    if (m_target.setAside.Empty() || LFile::Exists(m_target.files.audio)) return;
    LFile::Move(m_target.setAside, m_target.files.audio);
    m_target.setAside = LPath();
}

void Transport::Stop() {
    m_recorder.Stop();
}

void Transport::Trouble(const char* text) {
    LMessageBox(m_owner.OwnerWindow(), text, "Error", MB_OK | MB_ICONEXCLAMATION);
}

void Transport::SetDictation(const std::optional<DictationFiles>& files) {
    const bool isSame =
        files.has_value() == m_current.has_value() && (!files || files->record == m_current->record);
    m_current = files;
    m_lengthMs = files ? AudioLengthMs(files->audio) : 0;
    // A dictation that is chosen anew continues at its end: one press on Record never takes anything away.
    if (!isSame) m_positionMs = m_lengthMs;
    m_owner.PositionChanged();
}

void Transport::GoToStart() {
    Stop();
    m_positionMs = 0;
    m_owner.PositionChanged();
}

void Transport::GoToEnd() {
    Stop();
    m_positionMs = m_lengthMs;
    m_owner.PositionChanged();
}

void Transport::OnRecording() {
    m_isWaiting = false;
    m_owner.PositionChanged();
}

void Transport::OnWaiting() {
    m_isWaiting = true;
    m_owner.PositionChanged();
}

void Transport::OnTime(int32_t timeMs) {
    m_positionMs = timeMs;
    m_owner.PositionChanged();
}

void Transport::OnLevel() {
    const int8_t left = m_recorder.LevelDb(0);
    m_owner.LevelChanged(left, m_recorder.GetLevelChannels() > 1 ? m_recorder.LevelDb(1) : left);
}

void Transport::OnStopped(int32_t) {
    if (!m_isRecording) return;
    m_isRecording = false;
    m_isWaiting = false;
    const DictationFiles files = m_target.files;
    const bool recordedAnything = m_sink->GetFrames() > m_target.start.frames;
    const bool isStoppedByDisk = m_sink->IsError();
    m_sink.Reset();  // closes the file
    PutBackSetAside();
    const int32_t lengthMs = AudioLengthMs(files.audio);
    if (m_current && m_current->record == files.record) {
        m_lengthMs = lengthMs;
        // The file ends with what was recorded; the next recording continues there.
        m_positionMs = recordedAnything ? lengthMs : m_target.start.positionMs;
    }
    m_owner.RecordingStopped(files);
    if (isStoppedByDisk)
        m_owner.RecordingTrouble(kWriteFailed);
    else if (m_recorder.GetEnding() == LSoundRecorder::Ending::DeviceLost)
        m_owner.RecordingTrouble(kDeviceLost);
}
