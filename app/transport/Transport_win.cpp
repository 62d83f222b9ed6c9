#include "app/transport/Transport_win.h"

#include <algorithm>
#include <utility>

#include "audio/stream/LDecibel.h"
#include "audio/wave/LWaveFile.h"
#include "base/LArith.h"
#include "base/LTrace.h"
#include "store/SettingsKeys.h"
#include "ui/LWin.h"

// One position for all activities: recording and playing both report it and continue from it. Recording and
// Playback do the work; this class holds the rules that connect them, such as playing the passage that was
// just recorded.
// Starting a recording can take long (compressed audio is decoded first) and runs messages meanwhile, so the
// commands that arrive then must find a consistent state: m_isStarting refuses them, and a Stop is remembered
// and carried out when the recording has started.
// The position in a newly selected dictation is its end. Position 0 was rejected: with the mode "overwrite"
// the first press on Record after the start would replace the whole last dictation.

Transport::Transport(const AppState& state, const CurrentDictation& current, LModalRunner& runner,
                     Owner& owner)
    : m_state(state),
      m_current(current),
      m_runner(runner),
      m_owner(owner),
      m_playback(state.data.settingsFile, *this),
      m_recording(state, runner, *this) {}

// ---- Recording -------------------------------------------------------------------------------------------

bool Transport::Record(RecordMode mode) {
    if (IsRecording() || m_isStarting) {
        LTrace("Transport::Record called but already recording");
        return false;
    }
    m_isStarting = true;
    const bool hasDictation = Stop() && m_owner.HaveDictation() && m_current && m_runner.MayGoOn();
    const bool mayStart = hasDictation && (OnlyAppends(mode, {m_positionMs, m_lengthMs}) || SettleInsert());
    const bool started = mayStart && Start(mode);
    m_isStarting = false;
    return started;
}

// A dictation has one insertion at a time, and the place of one that waits is counted from the dictation's
// start: it is settled before another begins, and before anything is recorded over.
bool Transport::SettleInsert() {
    PendingInsert pending;
    if (PendingInsert::Read(*m_current.Files(), pending) == PendingInsert::Result::Absent) return true;
    return m_owner.SettleInsert() && m_current && m_runner.MayGoOn();
}

bool Transport::Start(RecordMode mode) {
    m_isPreparing = true;
    m_stopAsked = false;
    const RecordMode modeHere = ModeAt(mode, {m_positionMs, m_lengthMs});
    const bool started = m_recording.Start(*m_current.Files(), modeHere, m_positionMs);
    m_isPreparing = false;
    if (started) {  // as they are in the file, which another program may have changed
        m_positionMs = m_recording.StartMs();
        m_lengthMs = m_recording.LengthBeforeMs();
    }
    if (started) m_owner.ActivityChanged();
    if (started && m_stopAsked) Stop();
    return started;
}

// The sound behind the position was cut off with the first block; until then nothing has changed.
void Transport::RecordingPosition(int32_t positionMs) {
    if (m_recording.IsInserting())
        m_lengthMs = Saturate(int64_t{m_recording.LengthBeforeMs()} + positionMs - m_recording.StartMs());
    else if (positionMs > m_recording.StartMs())
        m_lengthMs = positionMs;
    m_positionMs = positionMs;
    m_owner.PositionChanged();
}

void Transport::RecordingEnded(const Recording::Outcome& outcome) {
    if (m_current.Is(outcome.files)) {
        m_lengthMs = outcome.lengthMs;
        m_positionMs = outcome.positionMs;
        m_recordedNothing = outcome.isEmpty && outcome.trouble == nullptr;
    }
    FinishActivity();
    m_owner.RowOutdated(outcome.files);
    if (outcome.isInsertKept) m_owner.InsertKept(outcome.files);
    if (outcome.trouble != nullptr) m_runner.TellAtRest(outcome.trouble);
}

// ---- Playing ---------------------------------------------------------------------------------------------

PlaySpeed Transport::PlaySpeedNow() const {
    const int32_t stored = Settings::Read(m_state.data.settingsFile, SettingsKeys::kPlaySpeed);
    return m_unstoredSpeed.value_or(ToPlaySpeed(stored));
}

bool Transport::Play() {
    if (IsPlaying() || m_isStarting) return false;
    // After a recording the recorded passage is played.
    const bool afterRecording = IsRecording();
    const int32_t recordedFromMs = m_recording.StartMs();
    return Stop() && PlayFrom(PlayStartMs(afterRecording ? recordedFromMs : m_positionMs, m_lengthMs));
}

bool Transport::PlayFromStart() {
    return !m_isStarting && Stop() && PlayFrom(0);
}

bool Transport::PlayAt(PlaySpeed speed) {
    Settings::Write(m_state.data.settingsFile, SettingsKeys::kPlaySpeed, static_cast<int32_t>(speed));
    m_unstoredSpeed.reset();
    if (PlaySpeedNow() != speed) m_unstoredSpeed = speed;
    if (!IsPlaying()) return Play();
    m_playback.SetSpeed(speed);
    m_owner.PositionChanged();
    return true;
}

bool Transport::PlayFrom(int32_t positionMs) {
    if (!m_current || !m_owner.IsDictationThere() || positionMs >= m_lengthMs) return false;
    return Tell(m_playback.Play(m_current.Files()->audio, positionMs, PlaySpeedNow()));
}

// Whether playback runs; reports its start to the owner, or the reason of the failure to the user.
bool Transport::Tell(Playback::Result result) {
    if (result != Playback::Result::Started) {
        if (const char* const text = Playback::Text(result); *text != 0)
            m_runner.TellLater(text, Playback::Caption(result));
        return false;
    }
    m_recordedNothing = false;
    m_owner.ActivityChanged();
    return true;
}

// The length of compressed audio may be an estimate: a position that was heard proves that the dictation is
// as long.
void Transport::PlaybackPosition(int32_t positionMs) {
    m_positionMs = positionMs;
    m_lengthMs = std::max(m_lengthMs, positionMs);
    m_owner.PositionChanged();
}

void Transport::PlaybackEnded(Playback::Ending ending) {
    // Audio that was heard to its end is at its end, even if the length was an estimate; otherwise the next
    // Play would find nothing to play there.
    if (ending == Playback::Ending::PlayedToEnd) m_positionMs = m_lengthMs;
    if (ending == Playback::Ending::DeviceLost) m_playsAfterWinding = false;
    FinishActivity();
    if (ending == Playback::Ending::DeviceLost) m_runner.TellAtRest(Playback::Text(ending));
}

// ---- Winding ---------------------------------------------------------------------------------------------

bool Transport::BeginWinding(WindDirection direction) {
    if (m_isStarting || IsWinding(direction)) return false;
    const bool playsAfterwards = IsPlaying() || IsRecording() || (IsWinding() && m_playsAfterWinding);
    // Stopping can take long and runs messages (an insertion is merged), and with them the release.
    m_windAsked = direction;
    const bool goesOn = Stop();
    const bool isHeld = std::exchange(m_windAsked, std::nullopt).has_value();
    if (!goesOn || !m_current || m_lengthMs < 1 || !m_owner.IsDictationThere()) return false;
    if (!isHeld) return playsAfterwards && PlayFrom(m_positionMs);
    if (!Tell(m_playback.Wind(m_current.Files()->audio, WindStartMs(m_positionMs, direction), direction)))
        return false;
    m_playsAfterWinding = playsAfterwards;
    return true;
}

void Transport::EndWinding(WindDirection direction) {
    if (m_windAsked == direction) {
        m_windAsked.reset();
        return;
    }
    if (IsWinding() && !IsWinding(direction)) return;
    // Winding that reached an end of the dictation has ended already, while the button is still held.
    const bool plays = m_playsAfterWinding;
    if (!IsWinding() && !plays) return;
    if (Stop() && plays) PlayFrom(m_positionMs);
}

// ---- Position --------------------------------------------------------------------------------------------

void Transport::ForgetNothingRecorded() {
    if (std::exchange(m_recordedNothing, false)) m_owner.PositionChanged();
}

bool Transport::Stop() {
    m_playsAfterWinding = false;
    ForgetNothingRecorded();
    if (m_isPreparing) {
        m_stopAsked = true;
        LModalRunner::CancelProcess();
    }
    if (IsPlaying() || IsWinding()) {
        m_playback.Stop();
        FinishActivity();
    }
    m_recording.Stop();
    return m_runner.MayGoOn();
}

void Transport::FinishActivity() {
    m_owner.LevelChanged(kSilenceDb, kSilenceDb);
    m_owner.ActivityChanged();
}

// Moves to the end (see above).
void Transport::EvDictationChanged() {
    EvAudioChanged();
    m_positionMs = m_lengthMs;
    m_recordedNothing = false;
    // Told now: Play is greyed where there is no audio.
    if (m_current && m_lengthMs == 0 && m_current.Files()->IsGone()) m_owner.RowOutdated(*m_current.Files());
    m_owner.PositionChanged();
}

void Transport::EvAudioChanged() {
    m_lengthMs = m_current ? LWaveFile::LengthMs(m_current.Files()->audio) : 0;
    m_owner.PositionChanged();
}

void Transport::EvInserted(const DictationFiles& files, int32_t atMs, int32_t addedMs) {
    if (!m_current.Is(files)) return;
    if (m_positionMs >= atMs) m_positionMs = Saturate(int64_t{m_positionMs} + addedMs);
    EvAudioChanged();
}

void Transport::GoToStart() {
    if (m_isStarting) return;
    if (IsPlaying()) {
        m_playback.Seek(0);
        return;
    }
    const bool plays = IsRecording();  // a user who goes back while dictating wants to hear the dictation
    if (!Stop()) return;
    m_positionMs = 0;
    if (!plays || !PlayFrom(0)) m_owner.PositionChanged();
}

void Transport::GoToEnd() {
    if (m_isStarting || !Stop()) return;
    m_positionMs = m_lengthMs;
    m_owner.PositionChanged();
}
