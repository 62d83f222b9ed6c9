#pragma once

#include <functional>

#include "audio/device/LSoundRecorder_win.h"
#include "store/SoundInput.h"

// Listens to the microphone without recording, for a level meter. Some cards open their input only once, so
// whoever records or plays stops it first.
// Units:  levels in dB.
// Thread: the window thread, on which onLevel is called too.
class Listening final : private LSoundRecorderNotify {
public:
    Listening() : m_recorder(*this) {}

    // Opens the input and sets its volume, as a recording with these settings would. False when the device
    // does not open. onLevel: after each tenth of a second; silence at the end.
    bool Start(SoundInput input, int8_t volumeDb, std::function<void(int8_t levelDb)> onLevel);
    void Stop() { m_recorder.Stop(); }
    bool IsRunning() const { return m_recorder.IsActive(); }

private:
    void OnRecording() override {}
    void OnWaiting() override {}
    void OnStopped(int32_t) override { m_onLevel(kSilenceDb); }
    void OnTime(int32_t) override {}
    void OnLevel() override { m_onLevel(m_recorder.LevelDb(0)); }

    std::function<void(int8_t)> m_onLevel;
    LSoundRecorder m_recorder;
};
