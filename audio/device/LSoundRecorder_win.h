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

// What the owner of a recorder hears of it, on the owner's own thread while it dispatches messages.
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
// Units:  times are milliseconds of the sink's material, what it held at the start included.
// Thread: that of the owner, which must dispatch messages: notifications come through a hidden window. The
//         sink belongs to the recorder from Start() until OnStopped().
class LSoundRecorder final : private LThread, private LNotifyWindow::Owner {
public:
    enum Flags : uint32_t {
        kArmOnly = 1,       // prepare everything, but start the device only with Restart()
        kRecordAtOnce = 2,  // write from the first block on, without waiting for a voice
    };
    // What ended the recording. The owner tells the user of the last two; what was written before stays.
    enum class Ending : uint8_t { Stopped, MaxTime, WriteError, DeviceLost };

    explicit LSoundRecorder(LSoundRecorderNotify& notify, int32_t stoppedValue = 0);
    // Stops a running recording, with its notification.
    ~LSoundRecorder() override;

    // The wave-in device, from 0; -1, as at first, is the platform's default one. Counts from the next
    // Start().
    void SetDevice(int32_t device) { m_device = device; }

    // False, with the sink released untouched, when the device does not open or the hidden window could not be
    // made. A recording that runs is
    // stopped first. thresholdDb: the level that starts a voice-activated recording; it pauses 5 dB below
    // when that lasts longer than hangTimeMs. -128 and -127 never pause. maxTimeMs: 0 or less is none.
    bool Start(const LSoundSink& sink, int32_t hangTimeMs, int8_t thresholdDb, int32_t maxTimeMs,
               uint32_t flags);
    // Lets an armed recording begin; false when there is none.
    bool Restart();
    // Returns when everything spoken until now is in the sink and the sink is released; OnStopped comes
    // before it returns. Does nothing when not recording.
    void Stop();

    // From a successful Start() to Stop().
    bool IsActive() const { return m_active; }
    VoiceGate::State GetState() const { return m_state.load(); }
    uint8_t GetLevelChannels() const { return m_levelChannels; }
    // -127 to 127 dB; channel below GetLevelChannels().
    int8_t LevelDb(uint8_t channel) const { return m_levels[channel].load(); }
    // The end of the last loud block; 0 when stopped.
    int32_t LastLoudMs() const { return m_lastLoudMs.load(); }
    // Of the recording that ended last: where it ends, and why.
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

    // The thread's own while it runs.
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
