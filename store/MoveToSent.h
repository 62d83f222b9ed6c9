#pragma once

#include <cstdint>
#include <functional>
#include <string_view>

#include "base/LPath.h"
#include "store/CurrentUser.h"
#include "store/DictationFiles.h"
#include "store/DictationRecord.h"

// Moves one dictation from Current to Sent, for sending. Until Commit() everything can be put back, and is
// put back by the destructor: a dictation is in Current as it was, or complete in Sent and in the queue.
//     MoveToSent move(user, files.record);
//     if (!move.Run(description, LNowSeconds()) || !queue.Add(move.Sent().audio, ...)) return;   // put back
//     move.Commit();
// A note beside the user file names the dictation from before the first step until the commit, so that a
// program that ends in between finds at its next start what is to be put back (RecoverDictations). Before
// Run: transport stopped and notes saved, no file of the dictation open.
// Thread: the window thread.
class MoveToSent {
public:
    // record: any path of the dictation; its file name counts.
    MoveToSent(const CurrentUser& user, const LPath& record);
    ~MoveToSent();
    MoveToSent(const MoveToSent&) = delete;
    MoveToSent& operator=(const MoveToSent&) = delete;

    // Moves notes and record, writes "senddate", "recipient" and "sendstatus" into the moved record, moves
    // the audio. A dictation without notes is complete; without record or audio the move fails. False when
    // anything cannot be moved; everything is then back in Current.
    bool Run(std::string_view recipient, int64_t now);
    const DictationFiles& Sent() const { return m_sent; }
    // The dictation is in the queue. Files of the same name that were in Sent before are deleted only now.
    void Commit();

    // Takes up the move that an earlier run of the program left, if it left one: commits it when the
    // dictation is in the queue or was already sent, and puts it back otherwise. isQueued is asked with the
    // path of the audio in Sent.
    static void TakeUp(const CurrentUser& user, const std::function<bool(const LPath& sentAudio)>& isQueued);

private:
    bool WriteNote() const;
    bool MoveAll(std::string_view recipient, int64_t now);
    bool IsComplete(const std::function<bool(const LPath&)>& isQueued) const;
    void PutBack();

    LPath m_note;
    DictationFiles m_current;
    DictationFiles m_sent;
    DictationRecord m_before;  // for the keys of an earlier sending
    bool m_hasNotes = false;
    bool m_pending = false;  // begun, and neither committed nor put back
};
