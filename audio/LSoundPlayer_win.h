#pragma once

#include <windows.h>

#include <cstdint>
#include <span>

#include "audio/LSoundSource.h"

// What the player tells its owner, on the owner's thread.
class LSoundPlayerNotify {
public:
    virtual ~LSoundPlayerNotify() = default;
    // The position that is heard, in frames of the source that was given to Start; never beyond its length.
    virtual void OnPlayPosition(int32_t frames) = 0;
    // The levels have changed; ask LevelDb.
    virtual void OnPlayLevel() = 0;
    // Playback ended by itself: the end was heard, or the device no longer answers. The owner may destroy the
    // player. Not called for Stop().
    virtual void OnPlayStopped() = 0;
};

// Plays a source on a wave-out device, on a thread of its own. The device holds seven seconds of audio, so
// that playback survives a busy machine.
// Thread: the owner's, which dispatches messages.
class LSoundPlayer final {
public:
    static constexpr size_t kCueGraphBytes = 512;

    explicit LSoundPlayer(LSoundPlayerNotify& notify);

    void SetDevice(int32_t device);  // -1: the platform's default device
    // Prepares playback from the source's present position; nothing is heard before Play(). False (traced)
    // when the source or the device cannot be used. A growing source (IsGrowing) is played on to where it has
    // grown.
    bool Start(const LSoundSource& source);
    void Stop();
    void Play();
    void Pause();
    // Cue mode repeats a short snippet at the position until the next Seek.
    void Cue(bool on);
    void Seek(int32_t frame);
    // At the speaker's own pitch (LSpeedSource); may change while playing, from the place that is heard.
    void SetSpeed(int32_t percent);
    bool GetCueGraph(uint8_t* graph, int32_t spanMs);

    bool IsPlaying() const;  // from Start to Stop or the end, paused or not
    bool IsPaused() const;
    int32_t PositionFrames() const;
    uint8_t GetLevelChannels() const;
    int8_t LevelDb(uint8_t channel) const;
};
