#pragma once

#include <cstdint>

#include "app/transport/PlayPlan.h"
#include "audio/device/LSoundPlayer_win.h"
#include "base/LPath.h"

// Plays and winds the audio of one dictation. The file is open only while it runs.
// Units:  milliseconds of the dictation at normal speed, for every speed of playing.
// Errors: as Result and Ending; the owner tells the user.
// Thread: the window thread, on which the player's messages arrive too.
class Playback final : private LSoundPlayerNotify {
public:
    enum class Result { Started, NothingToPlay, CannotRead, NoDevice };
    enum class Ending { PlayedToEnd, Wound, DeviceLost };

    class Owner {
    public:
        virtual ~Owner() = default;
        virtual void PlaybackPosition(int32_t positionMs) = 0;
        virtual void PlaybackLevel(int8_t leftDb, int8_t rightDb) = 0;
        // It ended without Stop: the end was heard, winding reached an end of the dictation, or the device no
        // longer answers.
        virtual void PlaybackEnded(Ending ending) = 0;
    };

    // Sentences for the user; empty for those that need none.
    static const char* Text(Result result);
    static const char* Text(Ending ending);
    // The caption for such a sentence.
    static const char* Caption(Result result) {
        return result == Result::NoDevice ? "Sound Device Error" : "Error";
    }

    // The settings file gives the output device and its volume.
    Playback(const LPath& settingsFile, Owner& owner);
    ~Playback() override;

    Result Play(const LPath& audio, int32_t positionMs, PlaySpeed speed);
    Result Wind(const LPath& audio, int32_t positionMs, WindDirection direction);
    // Stops; before that the owner gets the position of the last sound that was heard.
    void Stop();

    bool IsPlaying() const { return m_activity == Activity::Playing; }
    bool IsWinding() const { return m_activity == Activity::Winding; }
    WindDirection Direction() const { return m_direction; }
    // That of the last Play or SetSpeed.
    PlaySpeed Speed() const { return m_speed; }

    // These two have an effect only while playing.
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
    LSoundSource m_source;  // the source that the player plays
    Activity m_activity = Activity::Stopped;
    WindDirection m_direction = WindDirection::Back;
    PlaySpeed m_speed = PlaySpeed::Normal;
};
