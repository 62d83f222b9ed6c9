#pragma once

#include <optional>
#include <string>

#include "app/AppState.h"
#include "app/transport/RecordPlan.h"
#include "audio/device/LSoundRecorder_win.h"
#include "store/DictationFiles.h"
#include "ui/LModalRunner.h"

// Records into one dictation: makes its file ready, opens the input, runs the recorder.
// Units: milliseconds of the dictation. Thread: the window thread.
class Recording final : private LSoundRecorderNotify {
public:
    // What a recording left behind. The file is closed and may be read.
    struct Outcome {
        DictationFiles files;
        int32_t positionMs = 0;         // the end of what was recorded, or where it would have begun
        int32_t lengthMs = 0;           // of the whole dictation
        const char* trouble = nullptr;  // what the user must know
    };

    class Owner {
    public:
        virtual ~Owner() = default;
        virtual void RecordingPosition(int32_t positionMs) = 0;
        virtual void RecordingLevel(int8_t leftDb, int8_t rightDb) = 0;
        // Voice activation began or ended to wait.
        virtual void RecordingWaits(bool isWaiting) = 0;
        virtual void RecordingEnded(const Outcome& outcome) = 0;
    };

    Recording(const AppState& state, LModalRunner& runner, Owner& owner);
    ~Recording();

    // From a position of the dictation. False after the user was told why not.
    bool Start(const DictationFiles& files, RecordMode mode, int32_t positionMs);
    // Finishes it properly; the owner is told.
    void Stop();

    bool IsRunning() const { return m_isRunning; }
    // Recording, but voice activation still waits for the speaker.
    bool IsWaiting() const { return m_isRunning && m_isWaiting; }
    const DictationFiles& Files() const { return m_target.files; }
    int32_t StartMs() const { return m_target.start.positionMs; }

private:
    // What a recording writes into, found out before anything is changed.
    struct Target {
        DictationFiles files;
        LWaveInfo info;  // of the existing audio; format says how to record
        RecordStart start;
        LPath setAside;  // what stood under the audio's name and was no audio; put back unless something is
                         // recorded
    };

    bool PrepareTarget(RecordMode mode, int32_t positionMs, Target& target);
    bool ReadExisting(Target& target);
    bool Rewrite(Target& target);
    bool OpenSink(const Target& target);
    bool StartRecorder();
    void PutBackSetAside();

    void OnRecording() override;
    void OnWaiting() override;
    void OnStopped(int32_t value) override;
    void OnTime(int32_t timeMs) override;
    void OnLevel() override;

    const AppState& m_state;
    LModalRunner& m_runner;
    Owner& m_owner;
    LSoundRecorder m_recorder;
    // Of the running recording. The recorder's thread writes to the sink; we hold it to see afterwards what
    // was taken.
    Target m_target;
    LSoundSink m_sink;
    bool m_isRunning = false;
    bool m_isWaiting = false;
};
