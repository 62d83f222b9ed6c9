#pragma once

#include <windows.h>

#include <array>
#include <atomic>
#include <cstdint>

#include "audio/device/LNotifyWindow_win.h"
#include "audio/device/LWaveOut_win.h"
#include "audio/device/PlayClock.h"
#include "audio/device/PlayMaterial.h"
#include "audio/device/PlayQueue.h"
#include "audio/stream/LSoundSource.h"
#include "base/LThread.h"

// The player's listener. Every call comes on the thread that owns the player.
class LSoundPlayerNotify {
public:
    virtual ~LSoundPlayerNotify() = default;
    // The position that is heard, in frames of the source given to Start; never beyond its length. Also
    // called within Start, Seek, Pause and the like, before they return.
    virtual void OnPlayPosition(int32_t frames) = 0;
    // The levels have changed; ask LevelDb.
    virtual void OnPlayLevel() = 0;
    // Playback ended by itself: the end was heard, or the device no longer answers (GetEnding). The owner may
    // destroy the player. Not called for Stop().
    virtual void OnPlayStopped() = 0;
};

// Plays a source on a wave-out device, on a thread of its own. The device holds seven seconds of audio, so
// that playback survives a busy machine.
// Units:  positions are frames of the source given to Start; levels are dB; speeds are percent of normal.
// Errors: Start returns false (traced); a device that fails later ends the playback (OnPlayStopped,
//         GetEnding).
// Thread: the owner's, which dispatches messages: notifications come through a hidden window. The source
//         belongs to the player from Start() to Stop() or OnPlayStopped().
class LSoundPlayer final : private LThread, private LNotifyWindow::Owner {
public:
    static constexpr size_t kCueGraphBytes = PlayMaterial::kGraphBytes;
    // The reason why the playback ended.
    enum class Ending : uint8_t { Stopped, AtEnd, DeviceLost };

    explicit LSoundPlayer(LSoundPlayerNotify& notify);
    // Stops without a notification.
    ~LSoundPlayer() override;

    // The wave-out device, from 0; -1, the initial value, is the platform's default one. Takes effect at the
    // next Start().
    void SetDevice(int32_t device) { m_deviceId = device; }
    // Prepares playback from the source's present position; nothing is heard before Play(). False (traced)
    // when the source or the device cannot be used. A growing source (IsGrowing) is followed as it grows. A
    // playback that runs is stopped first.
    bool Start(const LSoundSource& source);
    // Afterwards PositionFrames() is the end of the last sound heard.
    void Stop();
    // Starts the sound as soon as 42 buffers (4.2 s) are queued, or all there is. An end that was reached
    // while paused is notified after it.
    void Play();
    void Pause();
    // Cue mode repeats a quarter of a buffer (25 ms) at the position until the next Seek, which repeats the
    // one there. It is silent while paused. Switched off, playback continues from the position, or stays
    // paused there.
    void Cue(bool on);
    // Jumps at once: playback continues there, paused playback stays paused.
    void Seek(int32_t frame);
    // Changes the speed at the speaker's own pitch (LSpeedSource), also while playing, from the place that is
    // heard. The player keeps it for every later Start().
    void SetSpeed(int32_t percent);
    // Writes 512 peaks, 0 to 255, of the material of spanMs ms from the position on; all 0 outside cue mode.
    // False (traced) without a buffer.
    bool GetCueGraph(uint8_t* graph, int32_t spanMs);

    bool IsPlaying() const { return m_playing; }  // from Start to Stop or the end, paused or not
    bool IsPaused() const { return m_playing && m_queue.IsPaused(); }
    bool IsCueing() const { return m_playing && m_queue.IsCueing(); }
    // The position that is heard: to within a buffer while playing, as exactly as the device tells when
    // paused or stopped.
    int32_t PositionFrames() const { return m_position; }
    uint8_t GetLevelChannels() const { return m_levelChannels; }
    // -127 to 127 dB; channel below GetLevelChannels().
    int8_t LevelDb(uint8_t channel) const { return m_levels[channel]; }
    // The reason why the last playback ended.
    Ending GetEnding() const { return m_ending; }

private:
    // Buffers that are read before the device is reset for a jump: half a second.
    static constexpr size_t kAheadBlocks = 5;

    void EvNotify() override;
    bool OpenDevice();
    void ClearLevels();

    void ThreadFunction() override;
    bool Step();
    void TakeBack();
    bool Refill();
    void WriteTail();
    bool IsTailHeard() const;
    void EndBecause(Ending ending);

    int32_t HeardFrame();
    bool Reset();
    void Restart();
    void SetHeard(int32_t frame);
    size_t ReadAhead();
    bool Jump();
    bool Queue(const PlayBlock& block);
    bool CueBuffer();
    void TakeLevels(const PlayBlock& block);

    LSoundPlayerNotify& m_notify;
    int32_t m_deviceId = -1;
    int32_t m_percent = 100;
    bool m_playing = false;
    uint8_t m_levelChannels = 1;
    Ending m_ending = Ending::Stopped;
    LNotifyWindow m_window;
    LSignalObject m_bufferDone;

    // Guards the members below while the thread runs.
    LCriticalSection m_section;
    LWaveOut m_device;
    PlayMaterial m_material;
    PlayQueue m_queue;  // the owner's thread alone sets paused and cueing, and reads them without the lock
    PlayClock m_clock;
    size_t m_tailBuffers = 0;  // of silence, queued behind the last sound
    size_t m_tailIndex = 0;    // the last of them
    bool m_atEnd = false;      // all sound is back, since m_atEndMs
    uint32_t m_atEndMs = 0;
    PlayBlock m_block;
    std::array<PlayBlock, kAheadBlocks> m_ahead;
    int32_t m_heardFrame = 0;  // of the material: the end of the last buffer heard
    int32_t m_resetFrame = 0;  // of the material: the device's first frame after its reset

    // Written by the thread, read (the flags: and cleared) by the window.
    std::atomic<int32_t> m_position{0};
    std::array<std::atomic<int8_t>, 256> m_levels{};
    std::atomic<Ending> m_endReason{Ending::Stopped};
    std::atomic<bool> m_stopNotify{false};
    std::atomic<bool> m_positionChanged{false};
};
