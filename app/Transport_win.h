#pragma once

#include <optional>
#include <string>

#include "app/AppState.h"
#include "app/RecordPlan.h"
#include "audio/LSoundRecorder_win.h"
#include "store/DictationFiles.h"

// Recording of the current dictation, and the position in it. Owns the recorder.
// Units: milliseconds. Thread: the window thread.
class Transport final : private LSoundRecorderNotify {
public:
    class Owner {
    public:
        virtual ~Owner() = default;
        // The dictation to record into, made new when none is selected; none when that failed.
        virtual std::optional<DictationFiles> DictationToRecord() = 0;
        virtual void RecordingStarted(const DictationFiles& files) = 0;
        // The file is closed and its record may be read.
        virtual void RecordingStopped(const DictationFiles& files) = 0;
        virtual void PositionChanged() = 0;
        virtual void LevelChanged(int8_t leftDb, int8_t rightDb) = 0;
        // What the user must know, after the recording has been finished properly.
        virtual void RecordingTrouble(const std::string& text) = 0;
        virtual HWND OwnerWindow() const = 0;
        // Long work before a recording is over; false when the window is to close instead.
        virtual bool MayGoOn() = 0;
    };

    Transport(const AppState& state, Owner& owner);
    ~Transport();

    // Refused (false) while a recording runs.
    bool Record(RecordMode mode);
    // Stops and finishes whatever runs.
    void Stop();

    bool IsRecording() const { return m_isRecording; }
    bool IsPreparing() const { return m_isPreparing; }
    // Recording, but voice activation still waits for the speaker.
    bool IsWaiting() const { return m_isWaiting; }

    // Called when another dictation (or none) became the current one.
    void SetDictation(const std::optional<DictationFiles>& files);
    int32_t PositionMs() const { return m_positionMs; }
    int32_t LengthMs() const { return m_lengthMs; }
    void GoToStart();
    void GoToEnd();

private:
    // What a recording writes into, found out before anything is changed.
    struct Target {
        DictationFiles files;
        LWaveInfo info;  // of the existing audio; format says how to record
        RecordStart start;
        LPath setAside;  // what stood under the audio's name and was no audio; put back unless something is
                         // recorded
    };

    bool PrepareTarget(const DictationFiles& files, RecordMode mode, Target& target);
    bool ReadExisting(Target& target);
    bool Rewrite(Target& target);
    bool OpenSink(const Target& target);
    bool StartRecorder();
    void PutBackSetAside();
    void Trouble(const char* text);

    void OnRecording() override;
    void OnWaiting() override;
    void OnStopped(int32_t value) override;
    void OnTime(int32_t timeMs) override;
    void OnLevel() override;

    const AppState& m_state;
    Owner& m_owner;
    LSoundRecorder m_recorder;
    std::optional<DictationFiles> m_current;
    // Of the running recording. The recorder's thread writes to the sink; we hold it to see afterwards what
    // was taken.
    Target m_target;
    LSoundSink m_sink;

    int32_t m_positionMs = 0;
    int32_t m_lengthMs = 0;
    bool m_isPreparing = false;
    bool m_isRecording = false;
    bool m_isWaiting = false;
};
