#pragma once

#include <cstdint>

#include "app/transport/PlayPlan.h"
#include "audio/device/LSoundPlayer_win.h"
#include "base/LPath.h"

// Plays and winds one dictation's audio. Holds the file open only while it runs.
// Units: milliseconds of the dictation, whatever the speed. Thread: the window thread.
class Playback final : private LSoundPlayerNotify {
public:
    enum class Result { Started, NothingToPlay, CannotRead, NoDevice };
    enum class Ending { PlayedToEnd, Wound, DeviceLost };

    class Owner {
    public:
        virtual ~Owner() = default;
        virtual void PlaybackPosition(int32_t positionMs) = 0;
        virtual void PlaybackLevel(int8_t leftDb, int8_t rightDb) = 0;
        // It ended by itself: the end was heard, or the place where winding ends, or the device no longer
        // answers.
        virtual void PlaybackEnded(Ending ending) = 0;
    };

    // The settings file names the output device and its volume.
    Playback(const LPath& settingsFile, Owner& owner);
    ~Playback() override;

    Result Play(const LPath& audio, int32_t positionMs, PlaySpeed speed);
    Result Wind(const LPath& audio, int32_t positionMs, WindDirection direction);
    // The owner is told where the sound was last heard.
    void Stop();

    bool IsPlaying() const { return m_activity == Activity::Playing; }
    bool IsWinding() const { return m_activity == Activity::Winding; }
    WindDirection Direction() const { return m_direction; }

    // While playing.
    void Seek(int32_t positionMs);
    void SetSpeed(PlaySpeed speed);

private:
    enum class Activity { Stopped, Playing, Winding };

    Result OpenSource(const LPath& audio, int32_t positionMs, LSoundSource& source) const;
    Result Start(const LSoundSource& source, Activity activity, PlaySpeed speed);
    int32_t PositionMs(int32_t frames) const;

    void OnPlayPosition(int32_t frames) override;
    void OnPlayLevel() override;
    void OnPlayStopped() override;

    const LPath& m_settingsFile;
    Owner& m_owner;
    LSoundPlayer m_player;
    LSoundSource m_source;  // what the player was given
    Activity m_activity = Activity::Stopped;
    WindDirection m_direction = WindDirection::Back;
};
