#pragma once

#include <cstdint>
#include <string_view>

#include "base/LFileLock.h"
#include "base/LPath.h"
#include "store/CurrentUser.h"
#include "store/DictationFiles.h"
#include "store/DictationRecord.h"
#include "store/QueueAnswer.h"

// Moves one dictation from Current to Sent, for sending. Until Commit() everything can be put back, and is
// put back by the destructor: a dictation is in Current as it was, or complete in Sent and in the queue.
//     MoveToSent move(user, files.record, isQueued);
//     if (!move.Run(description, LNowSeconds()) || !queue.Add(move.Sent().audio, ...)) return;   // put back
//     move.Commit();
// A journal beside the user file names the dictation from before the first step until the commit, so that a
// program that ends in between finds at its next start what is to be put back (RecoverDictations). So does a
// move that could not be put back because another program kept a file open: nothing else is moved before it
// is. Before Run: transport stopped and notes saved, no file of the dictation open. Thread: the window
// thread.
class MoveToSent {
public:
    // record: any path of the dictation; its file name counts. The user outlives the move.
    MoveToSent(const CurrentUser& user, const LPath& record, AskQueue isQueued);
    ~MoveToSent();
    MoveToSent(const MoveToSent&) = delete;
    MoveToSent& operator=(const MoveToSent&) = delete;

    // Moves notes and record, writes "senddate", "recipient" and "sendstatus" into the moved record, moves
    // the audio. A dictation without notes is complete; without record or audio the move fails. What is in
    // Sent under the same name gets a number of its own there. Files that others keep open are waited for,
    // two seconds each. False when anything cannot be moved; everything is then back in Current, and Reason
    // says why.
    bool Run(std::string_view recipient, int64_t now);
    // Sentences for the user; empty unless Run failed.
    const char* Reason() const { return m_reason; }
    const DictationFiles& Sent() const { return m_sent; }
    // The dictation is in the queue.
    void Commit();

    // Takes up the move that an earlier one left, if it left one: commits it when the dictation is in the
    // queue or was already sent, and puts it back otherwise. False while it stays, because the queue or a
    // file cannot be read or moved.
    static bool TakeUp(const CurrentUser& user, const AskQueue& isQueued);

private:
    LFileLock::Result TakeTurn();
    bool TakeUpJournal();
    bool WriteJournal() const;
    const char* FindObstacle();
    bool MakeRoom() const;
    bool MoveAll(std::string_view recipient, int64_t now);
    bool Settle();
    bool PutBack();

    const CurrentUser& m_user;
    AskQueue m_isQueued;
    LPath m_journal;
    LFileLock m_turn;  // another Windows session may be moving on the same folder
    DictationFiles m_current;
    DictationFiles m_sent;
    DictationRecord m_before;  // for the keys of an earlier sending
    const char* m_reason = "";
    bool m_hasNotes = false;
    bool m_pending = false;  // begun, and neither committed nor put back
};
