#pragma once

#include <optional>
#include <string>

#include "app/AppState.h"
#include "app/transport/Playback_win.h"
#include "app/transport/Recording_win.h"

// The transport: the position in the current dictation, and recording, playing and winding, of which one runs
// at a time.
// Units: milliseconds of the dictation. Thread: the window thread.
class Transport final : private Recording::Owner, private Playback::Owner {
public:
    class Owner {
    public:
        virtual ~Owner() = default;
        // The dictation to record into, made new when none is selected; none when that failed.
        virtual std::optional<DictationFiles> DictationToRecord() = 0;
        // What runs has changed; the levels are silent when nothing does.
        virtual void ActivityChanged() = 0;
        // The file is closed and its record may be read.
        virtual void RecordingStopped(const DictationFiles& files) = 0;
        virtual void PositionChanged() = 0;
        virtual void LevelChanged(int8_t leftDb, int8_t rightDb) = 0;
        // What the user must know. May come from within a notification or another command: to be shown later.
        virtual void TransportTrouble(const std::string& text) = 0;
        virtual HWND OwnerWindow() const = 0;
        // Long work before a recording is over; false when the window is to close instead.
        virtual bool MayGoOn() = 0;
    };

    Transport(const AppState& state, Owner& owner);

    // Refused (false) while a recording runs. Playing and winding are stopped.
    bool Record(RecordMode mode);
    // At the stored speed; at the end, from the start. Refused (false) while playing. A recording is finished
    // first, and what it added is heard.
    bool Play();
    bool PlayFromStart();
    // Stores the speed and plays at it, going on without a gap when it plays already.
    void PlayAt(PlaySpeed speed);
    // Winds until EndWinding. False when there is nothing to wind.
    bool BeginWinding(WindDirection direction);
    // Goes on playing when playing or recording ran before. Leaves winding in the other direction alone.
    void EndWinding(WindDirection direction);
    // Stops and finishes whatever runs.
    void Stop();
    // While playing it plays on from there, and after a recording too.
    void GoToStart();
    void GoToEnd();

    bool IsRecording() const { return m_recording.IsRunning(); }
    bool IsRunning() const { return IsRecording() || IsPlaying() || IsWinding(); }
    bool IsPreparing() const { return m_isPreparing; }
    bool IsWaiting() const { return m_recording.IsWaiting(); }
    bool IsPlaying() const { return m_playback.IsPlaying(); }
    bool IsWinding() const { return m_playback.IsWinding(); }
    bool IsWinding(WindDirection direction) const {
        return m_playback.IsWinding() && m_playback.Direction() == direction;
    }

    // Called when another dictation (or none) became the current one.
    void SetDictation(const std::optional<DictationFiles>& files);
    int32_t PositionMs() const { return m_positionMs; }
    int32_t LengthMs() const { return m_lengthMs; }

private:
    PlaySpeed StoredSpeed() const;
    bool PlayFrom(int32_t positionMs);
    bool Tell(Playback::Result result);
    void FinishActivity();

    void RecordingPosition(int32_t positionMs) override;
    void RecordingLevel(int8_t leftDb, int8_t rightDb) override { m_owner.LevelChanged(leftDb, rightDb); }
    void RecordingWaits(bool) override { m_owner.PositionChanged(); }
    void RecordingEnded(const Recording::Outcome& outcome) override;
    HWND OwnerWindow() const override { return m_owner.OwnerWindow(); }
    bool MayGoOn() override { return m_owner.MayGoOn(); }

    void PlaybackPosition(int32_t positionMs) override;
    void PlaybackLevel(int8_t leftDb, int8_t rightDb) override { m_owner.LevelChanged(leftDb, rightDb); }
    void PlaybackEnded(Playback::Ending ending) override;

    const AppState& m_state;
    Owner& m_owner;
    std::optional<DictationFiles> m_current;
    int32_t m_positionMs = 0;
    int32_t m_lengthMs = 0;
    bool m_isPreparing = false;
    bool m_playsAfterWinding = false;
    Playback m_playback;
    Recording m_recording;
};
