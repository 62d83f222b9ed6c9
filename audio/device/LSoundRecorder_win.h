#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <vector>

#include "audio/device/LNotifyWindow_win.h"
#include "audio/device/LWaveIn_win.h"
#include "audio/device/VoiceGate.h"
#include "audio/stream/LSoundSink.h"
#include "base/LThread.h"

// The recorder's listener. Every call comes on the owner's thread while it dispatches messages.
struct LSoundRecorderNotify {
    virtual void OnRecording() = 0;                 // audio is being written
    virtual void OnWaiting() = 0;                   // voice activation waits for sound
    virtual void OnStopped(int32_t value) = 0;      // the sink is closed; value as given to the recorder
    virtual void OnTime(int32_t milliseconds) = 0;  // where the last loud block ends
    virtual void OnLevel() = 0;                     // LevelDb() has changed

protected:
    ~LSoundRecorderNotify() = default;
};

// Records from the sound card into a sink, on a thread of its own, until it is stopped, the maximum time is
// reached, or the disk or the device fails.
// Units:  times are milliseconds of the sink's material, including the material that it held at the start;
//         levels are dB.
// Errors: Start returns false (traced); a failure later on stops the recording (OnStopped, GetEnding).
// Thread: that of the owner, which must dispatch messages: notifications come through a hidden window. The
//         sink belongs to the recorder from Start() until OnStopped().
class LSoundRecorder final : private LThread, private LNotifyWindow::Owner {
public:
    enum Flags : uint32_t {
        kArmOnly = 1,       // prepare everything, but start the device only with Restart()
        kRecordAtOnce = 2,  // write from the first block on, without waiting for a voice
    };
    // The reason why the recording ended. The owner tells the user of the last two; the audio written before
    // stays.
    enum class Ending : uint8_t { Stopped, MaxTime, WriteError, DeviceLost };

    explicit LSoundRecorder(LSoundRecorderNotify& notify, int32_t stoppedValue = 0);
    // Stops a running recording, with its notification.
    ~LSoundRecorder() override;

    // The wave-in device, from 0; -1, the initial value, is the platform's default one. Takes effect at the
    // next Start().
    void SetDevice(int32_t device) { m_device = device; }

    // False, with the sink released untouched, when the device does not open or the hidden window is missing.
    // A recording that runs is stopped first. thresholdDb: the level that starts a voice-activated recording;
    // it pauses after more than hangTimeMs below a level 5 dB lower. -128 and -127 never pause. maxTimeMs: 0
    // or less is no limit.
    bool Start(const LSoundSink& sink, int32_t hangTimeMs, int8_t thresholdDb, int32_t maxTimeMs,
               uint32_t flags);
    // Starts an armed recording (kArmOnly); false when there is none.
    bool Restart();
    // Returns when all sound up to now is in the sink and the sink is released; OnStopped comes before it
    // returns. Does nothing when no recording runs.
    void Stop();

    // From a successful Start() to Stop().
    bool IsActive() const { return m_active; }
    VoiceGate::State GetState() const { return m_state.load(); }
    uint8_t GetLevelChannels() const { return m_levelChannels; }
    // -127 to 127 dB; channel below GetLevelChannels().
    int8_t LevelDb(uint8_t channel) const { return m_levels[channel].load(); }
    // The end of the last loud block; 0 when stopped.
    int32_t LastLoudMs() const { return m_lastLoudMs.load(); }
    // The last recording: its end in ms, and the reason for it.
    int32_t EndMs() const { return m_endMs; }
    Ending GetEnding() const { return m_ending.load(); }

private:
    void EvNotify() override;
    bool WaitUntilStarted(const char* lateTrace);
    void Release();

    void ThreadFunction() override;
    bool OpenDevice();
    size_t Run();
    bool NextBuffer(size_t index);
    bool TakeBuffer(size_t index);
    void Drain(size_t index);
    void Convert(size_t index);
    void Publish();
    void EndBecause(Ending ending);

    LSoundRecorderNotify& m_notify;
    const int32_t m_stoppedValue;
    int32_t m_device = -1;
    LNotifyWindow m_window;
    LSoundSink m_sink;
    bool m_active = false;
    uint8_t m_levelChannels = 1;
    int32_t m_endMs = 0;

    LSignalObject m_started;  // the buffers are queued, or the device did not open
    LSignalObject m_go;
    LSignalObject m_bufferDone;

    // Belongs to the thread while it runs.
    VoiceGate m_gate;
    LWaveIn m_waveIn;
    std::vector<int32_t> m_block;
    uint32_t m_lastBufferTick = 0;

    // Written by the thread, read (the flags: and cleared) by the window.
    std::atomic<VoiceGate::State> m_state{VoiceGate::State::Stopped};
    std::atomic<Ending> m_ending{Ending::Stopped};
    std::atomic<int32_t> m_lastLoudMs{0};
    std::array<std::atomic<int8_t>, 256> m_levels{};
    std::atomic<bool> m_stopRequested{false};
    std::atomic<bool> m_levelChanged{false};
    std::atomic<bool> m_stateChanged{false};
};
