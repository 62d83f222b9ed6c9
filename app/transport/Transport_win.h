#pragma once

#include <optional>

#include "app/AppState.h"
#include "app/transport/CurrentDictation.h"
#include "app/transport/Playback_win.h"
#include "app/transport/Recording_win.h"
#include "ui/LModalRunner.h"

// The transport: the position in the current dictation, and recording, playing and winding, one at a time.
// Units:  milliseconds of the dictation; levels in dB.
// Errors: reported to the user; a command that cannot be carried out returns false.
// Thread: the window thread. Stop and the start of a recording can run messages, and with them other
//         commands.
class Transport final : private Recording::Owner, private Playback::Owner {
public:
    class Owner {
    public:
        virtual ~Owner() = default;
        // Creates a new current dictation when there is none; false when that failed, or when the current one
        // is gone.
        virtual bool HaveDictation() = 0;
        // False when another program has sent or deleted the current dictation; the user is told, and another
        // one is the current one then.
        virtual bool IsDictationThere() = 0;
        // An insertion into the current dictation waits to be merged: asks the user. False when it still
        // waits.
        virtual bool SettleInsert() = 0;
        // An insertion could not be merged and waits.
        virtual void InsertKept(const DictationFiles& files) = 0;
        // An activity has started or ended. When none runs, LevelChanged has reported silence before.
        virtual void ActivityChanged() = 0;
        // The row of a dictation may be out of date: it was recorded onto (the file is closed and may be
        // read), or is gone.
        virtual void RowOutdated(const DictationFiles& files) = 0;
        virtual void PositionChanged() = 0;
        virtual void LevelChanged(int8_t leftDb, int8_t rightDb) = 0;
    };

    // All references must outlive the object.
    Transport(const AppState& state, const CurrentDictation& current, LModalRunner& runner, Owner& owner);

    // Starts a recording; playing and winding are stopped. Refused (false) while one runs or is being
    // prepared.
    bool Record(RecordMode mode);
    // Plays from the position at the play speed, at the end from the start. A running recording is finished
    // first, and its passage is played. Refused (false) while playing.
    bool Play();
    bool PlayFromStart();
    // The play speed: the stored one, or that of the last PlayAt where it could not be stored.
    PlaySpeed PlaySpeedNow() const;
    // Makes it the play speed and plays at it; if it plays already, without a gap. False when there is
    // nothing to play.
    bool PlayAt(PlaySpeed speed);
    // Winds until EndWinding or an end of the dictation. False when there is nothing to wind.
    bool BeginWinding(WindDirection direction);
    // Ends winding, and plays on if playing or recording ran before it. Ignored while winding in the other
    // direction.
    void EndWinding(WindDirection direction);
    // Ends every activity, also a recording that is being prepared. False when the window is to close.
    bool Stop();
    // Whether an insertion that ends is left to the next start (see Recording).
    void LeaveInserts(bool isLeft) { m_recording.LeaveInserts(isLeft); }
    // While playing, playing goes on from there; a recording is finished, and then played from there.
    void GoToStart();
    void GoToEnd();

    bool IsRecording() const { return m_recording.IsRunning(); }
    // Also true while a recording is being prepared, because that can be stopped.
    bool IsRunning() const { return m_isPreparing || IsRecording() || IsPlaying() || IsWinding(); }
    // These are also true from the first moment of a command that records.
    bool IsBusy() const { return m_isStarting || IsRunning(); }
    bool TakesInput() const { return m_isStarting || IsRecording(); }
    bool IsInserting() const { return m_recording.IsInserting(); }
    bool IsWaiting() const { return m_recording.IsWaiting(); }
    bool HearsNothing() const { return m_recording.HearsNothing(); }
    // The recording that waits for the first word will replace the dictation from PositionMs to LengthMs.
    bool WillReplace() const {
        return m_recording.HasHeardNothing() && !IsInserting() && m_positionMs < m_lengthMs;
    }
    // The recording that ended last wrote nothing, and no command has been given since.
    bool RecordedNothing() const { return m_recordedNothing; }
    void ForgetNothingRecorded();
    bool IsPlaying() const { return m_playback.IsPlaying(); }
    PlaySpeed Speed() const { return m_playback.Speed(); }
    bool IsWinding() const { return m_playback.IsWinding(); }
    bool IsWinding(WindDirection direction) const {
        return m_playback.IsWinding() && m_playback.Direction() == direction;
    }

    // The current dictation is another one, or none.
    void EvDictationChanged();
    // The audio of the current dictation may have changed.
    void EvAudioChanged();
    // Sound was inserted into a dictation: the position stays with the words that it stood at.
    void EvInserted(const DictationFiles& files, int32_t atMs, int32_t addedMs);
    int32_t PositionMs() const { return m_positionMs; }
    int32_t LengthMs() const { return m_lengthMs; }

private:
    bool SettleInsert();
    bool Start(RecordMode mode);
    bool PlayFrom(int32_t positionMs);
    bool Tell(Playback::Result result);
    void FinishActivity();

    void RecordingPosition(int32_t positionMs) override;
    void RecordingLevel(int8_t leftDb, int8_t rightDb) override { m_owner.LevelChanged(leftDb, rightDb); }
    void RecordingWaits(bool) override { m_owner.PositionChanged(); }
    void RecordingEnded(const Recording::Outcome& outcome) override;

    void PlaybackPosition(int32_t positionMs) override;
    void PlaybackLevel(int8_t leftDb, int8_t rightDb) override { m_owner.LevelChanged(leftDb, rightDb); }
    void PlaybackEnded(Playback::Ending ending) override;

    const AppState& m_state;
    const CurrentDictation& m_current;
    LModalRunner& m_runner;
    Owner& m_owner;
    int32_t m_positionMs = 0;
    int32_t m_lengthMs = 0;
    bool m_isStarting = false;   // between Record and its return: refuses another recording
    bool m_isPreparing = false;  // file and device of a recording are being prepared
    bool m_stopAsked = false;    // Stop was called during the preparation
    bool m_recordedNothing = false;
    std::optional<PlaySpeed> m_unstoredSpeed;
    std::optional<WindDirection> m_windAsked;  // winding begins, and has not been let go
    // Playing or recording ran before winding, and playing goes on after it.
    bool m_playsAfterWinding = false;
    Playback m_playback;
    Recording m_recording;
};
