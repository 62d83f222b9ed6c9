#pragma once

#include <optional>

#include "app/transport/DockState.h"
#include "audio/device/LSoundRecorder_win.h"
#include "base/LPath.h"
#include "store/SoundInput.h"

// Records a portable recorder, which plays at normal or at high speed, into the audio file of a dictation.
// The file keeps what it holds until the first sound; then the new recording takes its place.
// Units:  levels in dB; speed in percent of normal; milliseconds of the tape's playing.
// Errors: in the state, and by DockTrouble when a running recording breaks off.
// Thread: the window thread, on which the owner is called too.
class DockRecording final : private LSoundRecorderNotify {
public:
    class Owner {
    public:
        virtual ~Owner() = default;
        virtual void DockLevel(int8_t levelDb) = 0;
        virtual void DockChanged() = 0;
        virtual void DockTrouble(const char* text) = 0;
    };
    struct Choice {
        SoundInput input;
        int8_t startDb = 0;              // of voice activation
        std::optional<int32_t> percent;  // 100: normal speed; nothing: what was entered is no speed
        bool operator==(const Choice&) const = default;
    };

    explicit DockRecording(Owner& owner) : m_owner(owner), m_recorder(*this) {}
    ~DockRecording() { Stop(); }

    // Begins, or begins anew. sampleRate: of the audio file.
    void Start(const LPath& audio, int32_t sampleRate, const Choice& choice, int8_t volumeDb);
    // The input's volume, at once.
    void SetVolume(int8_t volumeDb) const;
    // Everything up to now is in the file afterwards, and the device is closed.
    void Stop() { m_recorder.Stop(); }
    // Every QuietTape::kTickMs.
    void Tick();
    // Stops because somebody else takes the input.
    void GiveUp();

    DockState State() const { return m_state; }
    bool IsRunning() const { return m_recorder.IsActive(); }
    // It runs, and has recorded something since Start.
    bool HoldsDevice() const { return IsRunning() && m_state == DockState::Records; }
    // It has recorded something since Start, and may have ended.
    bool HasHeard() const { return m_hasHeard; }
    std::string LengthText() const { return DockLengthText(m_playedMs, m_choice.percent.value_or(100)); }

private:
    DockState Begin(int32_t sampleRate, int8_t volumeDb);
    void OnRecording() override;
    void OnWaiting() override {}
    void OnStopped(int32_t value) override;
    void OnTime(int32_t timeMs) override { m_playedMs = timeMs; }
    void OnLevel() override;

    Owner& m_owner;
    LSoundRecorder m_recorder;
    LPath m_audio;
    Choice m_choice;
    LSoundSink m_file;  // inside the sink that changes the speed
    QuietTape m_quiet;
    DockState m_state = DockState::NoDevice;
    int32_t m_playedMs = 0;
    bool m_hasHeard = false;
};
