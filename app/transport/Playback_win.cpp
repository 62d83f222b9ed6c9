#include "app/transport/Playback_win.h"

#include "audio/convert/WindSource.h"
#include "audio/device/LMixer_win.h"
#include "audio/stream/LSoundTime.h"
#include "audio/wave/LWaveFile.h"
#include "store/SettingsKeys.h"

// A thin layer over LSoundPlayer: it makes the source (winding wraps the file's source in a WindSource, which
// jumps from snippet to snippet), and translates frames of that source into milliseconds of the dictation.
// While winding, the player counts frames of the WindSource; only that source knows the place in the
// dictation.
// Stop asks for the position after Pause and before the player stops: then nothing more is heard, and the
// next recording or playback goes on exactly there.

namespace {

constexpr char kCannotPlay[] =
    "Unable to play this dictation.\n\n"
    "Its audio file cannot be read. It may be open in another program, or its format is one that this "
    "computer does not know. Nothing was changed.";
constexpr char kNoDevice[] =
    "Unable to start playback device.\n\n"
    "This might mean you do not have a sound card installed or the sound card is being used by another "
    "application. Please check the Hardware Settings.";
constexpr char kDeviceLost[] =
    "Playing was stopped because the sound device no longer answers.\n\n"
    "Please check that the speaker or sound card is connected before you go on.";

}  // namespace

const char* Playback::Text(Result result) {
    if (result == Result::CannotRead) return kCannotPlay;
    return result == Result::NoDevice ? kNoDevice : "";
}

const char* Playback::Text(Ending ending) {
    return ending == Ending::DeviceLost ? kDeviceLost : "";
}

Playback::Playback(const LPath& settingsFile, Owner& owner)
    : m_settingsFile(settingsFile), m_owner(owner), m_player(*this) {}

Playback::~Playback() {
    m_player.Stop();
}

Playback::Result Playback::OpenSource(const LPath& audio, int32_t positionMs, LSoundSource& source) const {
    source = LWaveFile::OpenSource(audio);
    if (source->IsError()) return Result::CannotRead;
    if (source->GetLength() < 1) return Result::NothingToPlay;
    source->Seek(MsToFrames(positionMs, source->GetSampleRate()));
    return Result::Started;
}

Playback::Result Playback::Play(const LPath& audio, int32_t positionMs, PlaySpeed speed) {
    Stop();
    LSoundSource source;
    const Result opened = OpenSource(audio, positionMs, source);
    return opened == Result::Started ? Start(source, Activity::Playing, speed) : opened;
}

Playback::Result Playback::Wind(const LPath& audio, int32_t positionMs, WindDirection direction) {
    Stop();
    LSoundSource source;
    const Result opened = OpenSource(audio, positionMs, source);
    if (opened != Result::Started) return opened;
    m_direction = direction;
    const double sign = direction == WindDirection::Back ? -1.0 : 1.0;
    return Start(
        LSoundSource::Make<WindSource>(source, sign * kWindInitialSpeed, sign * kWindFinalSpeed, kWindRampMs),
        Activity::Winding, PlaySpeed::Normal);
}

Playback::Result Playback::Start(const LSoundSource& source, Activity activity, PlaySpeed speed) {
    const int32_t device = Settings::Read(m_settingsFile, SettingsKeys::kSoundOutDevice);
    LMixer::SetOutVolume(device, Settings::Read(m_settingsFile, SettingsKeys::kSoundOutVolume), 0);
    m_source = source;
    m_activity = activity;
    m_player.SetDevice(device);
    m_speed = speed;
    m_player.SetSpeed(SpeedPercent(speed));
    if (!m_player.Start(source)) {
        m_activity = Activity::Stopped;
        m_source.Reset();
        return Result::NoDevice;
    }
    m_player.Play();
    return Result::Started;
}

void Playback::Stop() {
    if (m_activity == Activity::Stopped) return;
    m_player.Pause();  // no sound is heard after this, so the position is final
    m_owner.PlaybackPosition(PositionMs(m_player.PositionFrames()));
    m_player.Stop();
    m_activity = Activity::Stopped;
    m_source.Reset();
}

void Playback::Seek(int32_t positionMs) {
    if (IsPlaying()) m_player.Seek(MsToFrames(positionMs, m_source->GetSampleRate()));
}

void Playback::SetSpeed(PlaySpeed speed) {
    if (!IsPlaying()) return;
    m_speed = speed;
    m_player.SetSpeed(SpeedPercent(speed));
}

int32_t Playback::PositionMs(int32_t frames) const {
    const int32_t heard =
        IsWinding() ? static_cast<const WindSource&>(*m_source).ToSourceFrame(frames) : frames;
    return FramesToMs(heard, m_source->GetSampleRate());
}

void Playback::OnPlayPosition(int32_t frames) {
    if (m_activity != Activity::Stopped) m_owner.PlaybackPosition(PositionMs(frames));
}

void Playback::OnPlayLevel() {
    if (m_activity == Activity::Stopped) return;
    const int8_t left = m_player.LevelDb(0);
    m_owner.PlaybackLevel(left, m_player.GetLevelChannels() > 1 ? m_player.LevelDb(1) : left);
}

// The player has ended by itself.
void Playback::OnPlayStopped() {
    if (m_activity == Activity::Stopped) return;
    Ending ending = IsPlaying() ? Ending::PlayedToEnd : Ending::Wound;
    if (m_player.GetEnding() == LSoundPlayer::Ending::DeviceLost) ending = Ending::DeviceLost;
    Stop();
    m_owner.PlaybackEnded(ending);
}
