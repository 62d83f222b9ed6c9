#pragma once

#include "app/AppState.h"
#include "app/transport/CurrentDictation.h"
#include "app/transport/Playback_win.h"
#include "app/transport/Recording_win.h"
#include "ui/LModalRunner.h"

// The transport: the position in the current dictation, and recording, playing and winding, of which one runs
// at a time.
// Units: milliseconds of the dictation. Thread: the window thread.
class Transport final : private Recording::Owner, private Playback::Owner {
public:
    class Owner {
    public:
        virtual ~Owner() = default;
        // Makes a new dictation the current one when there is none; false when that failed.
        virtual bool HaveDictation() = 0;
        // What runs has changed; the levels are silent when nothing does.
        virtual void ActivityChanged() = 0;
        // The file is closed and its record may be read.
        virtual void RecordingStopped(const DictationFiles& files) = 0;
        virtual void PositionChanged() = 0;
        virtual void LevelChanged(int8_t leftDb, int8_t rightDb) = 0;
    };

    // It works on the current dictation.
    Transport(const AppState& state, const CurrentDictation& current, LModalRunner& runner, Owner& owner);

    // Refused (false) while a recording runs. Playing and winding are stopped.
    bool Record(RecordMode mode);
    // At the stored speed; at the end, from the start. Refused (false) while playing. A recording is finished
    // first, and what it added is heard.
    bool Play();
    bool PlayFromStart();
    // Stores the speed and plays at it, going on without a gap when it plays already. False when there is nothing
    // to play.
    bool PlayAt(PlaySpeed speed);
    // Winds until EndWinding. False when there is nothing to wind.
    bool BeginWinding(WindDirection direction);
    // Goes on playing when playing or recording ran before. Leaves winding in the other direction alone.
    void EndWinding(WindDirection direction);
    // Stops and finishes whatever runs, and what is being prepared. False when the window is to close meanwhile.
    bool Stop();
    // While playing it plays on from there, and after a recording too.
    void GoToStart();
    void GoToEnd();

    bool IsRecording() const { return m_recording.IsRunning(); }
    // Preparing to record counts: it can be stopped.
    bool IsRunning() const { return m_isPreparing || IsRecording() || IsPlaying() || IsWinding(); }
    bool IsWaiting() const { return m_recording.IsWaiting(); }
    bool IsPlaying() const { return m_playback.IsPlaying(); }
    bool IsWinding() const { return m_playback.IsWinding(); }
    bool IsWinding(WindDirection direction) const {
        return m_playback.IsWinding() && m_playback.Direction() == direction;
    }

    // Another dictation (or none) has become the current one.
    void EvDictationChanged();
    // The audio of the current one may have changed.
    void EvAudioChanged();
    int32_t PositionMs() const { return m_positionMs; }
    int32_t LengthMs() const { return m_lengthMs; }

private:
    PlaySpeed StoredSpeed() const;
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
    bool m_isStarting = false;   // a recording: another must not start meanwhile
    bool m_isPreparing = false;  // its file and device
    bool m_stopAsked = false;    // while it was being prepared
    bool m_playsAfterWinding = false;
    Playback m_playback;
    Recording m_recording;
};
