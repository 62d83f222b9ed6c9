#pragma once

#include <optional>
#include <string>

#include "app/AppState.h"
#include "app/transport/RecordPlan.h"
#include "audio/device/LSoundRecorder_win.h"
#include "base/LArith.h"
#include "store/DictationFiles.h"
#include "store/PendingInsert.h"
#include "ui/LModalRunner.h"

// Closes the sink of a recording that has ended: drops its last handle, and looks whether the file is whole.
// Returns the text for the user when the recording ended with a fault; nullptr: it did not.
const char* CloseRecording(LSoundSink& sink, LSoundRecorder::Ending ending, bool recordedAnything,
                           const LPath& file);

// Records into one dictation: prepares its file, opens the input, runs the recorder.
// Units:  milliseconds of the dictation; levels in dB.
// Errors: reported to the user, those at the start by a box, those during a recording as Outcome::trouble.
// Thread: the window thread, on which the recorder's messages arrive too.
class Recording final : private LSoundRecorderNotify {
public:
    // The result of a recording. The file is closed and may be read.
    struct Outcome {
        DictationFiles files;
        int32_t positionMs = 0;  // end of the recorded passage; its planned start when nothing was recorded
        int32_t lengthMs = 0;    // of the whole dictation
        bool isEmpty = false;    // nothing was written
        bool isInsertKept = false;      // an insertion was not merged and waits (PendingInsert)
        const char* trouble = nullptr;  // text for the user; nullptr: none
    };

    class Owner {
    public:
        virtual ~Owner() = default;
        virtual void RecordingPosition(int32_t positionMs) = 0;
        virtual void RecordingLevel(int8_t leftDb, int8_t rightDb) = 0;
        // Voice activation started (true) or stopped waiting for the speaker.
        virtual void RecordingWaits(bool isWaiting) = 0;
        virtual void RecordingEnded(const Outcome& outcome) = 0;
    };

    Recording(const AppState& state, LModalRunner& runner, Owner& owner);
    ~Recording();

    // Starts at a position of the dictation. May run a long process, and with it messages, when the audio has
    // to be rewritten. False after the user was told the reason.
    bool Start(const DictationFiles& files, RecordMode mode, int32_t positionMs);
    // Drains the device and closes the file; the owner gets RecordingEnded before this returns. An insertion
    // is merged into the dictation before that, under a progress dialog, which runs messages.
    void Stop();
    // Whether insertions that end from now on are left to the next start instead: nothing long may run while
    // the window closes or the session ends.
    void LeaveInserts(bool isLeft) { m_leavesInserts = isLeft; }

    bool IsRunning() const { return m_isRunning; }
    // Whether voice activation waits for the speaker.
    bool IsWaiting() const { return m_isRunning && m_isWaiting; }
    // Whether voice activation has not heard the speaker since the start; nothing is changed until then.
    bool HasHeardNothing() const { return IsWaiting() && !m_hasHeard; }
    // The same, for five seconds already.
    bool HearsNothing() const;
    const DictationFiles& Files() const { return m_target.files; }
    int32_t StartMs() const { return m_target.start.positionMs; }
    bool IsInserting() const { return m_isRunning && m_target.start.isInsert; }
    // Length of the audio that the recording found.
    int32_t LengthBeforeMs() const { return Saturate(m_target.info.LengthMs()); }

private:
    // The target of a recording, determined before anything is changed.
    struct Target {
        DictationFiles files;
        LWaveInfo info;  // of the existing audio; its format is that of the recording
        RecordStart start;
        // New path of a file that had the audio's name and held no audio; put back unless something is
        // recorded.
        LPath setAside;
        PendingInsert insert;  // of an insertion: where it is recorded
    };

    bool PrepareTarget(RecordMode mode, int32_t positionMs, Target& target);
    bool ReadExisting(Target& target);
    bool Rewrite(Target& target);
    bool PrepareInsert(Target& target);
    void DropInsert();
    bool MergeInsert(Outcome& outcome);
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
    // Of the running recording. The recorder's thread writes to the sink; this handle keeps it alive, to ask
    // it afterwards for the number of frames and errors.
    Target m_target;
    LSoundSink m_sink;
    bool m_isRunning = false;
    bool m_isWaiting = false;
    bool m_hasHeard = false;
    bool m_leavesInserts = false;
    uint32_t m_startTick = 0;
};
