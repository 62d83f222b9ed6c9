#pragma once

#include <cstdint>
#include <string_view>

#include "base/LFileLock.h"
#include "base/LPath.h"
#include "store/CurrentUser.h"
#include "store/DictationFiles.h"
#include "store/DictationRecord.h"
#include "store/QueueAnswer.h"

// Moves one dictation from Current to Sent, as the first step of sending. Until Commit() the move can be
// undone, and the destructor undoes it: a dictation is either in Current as it was, or complete in Sent and
// in the queue.
//     MoveToSent move(user, files.record, isQueued);
//     if (!move.Run(description, LNowSeconds()) || !queue.Add(move.Sent().audio, ...)) return;   // undone
//     move.Commit();
// A journal beside the user file names the dictation from before the first step until the commit. The next
// start finds it (RecoverDictations) when the program ended in between, and the next move finds it when a
// file that another program held could not be put back; no other dictation is moved before that one is
// settled.
// BringBack is the way back, of a dictation that was sent. It has the same journal, so that a dictation is on
// one way at a time, and a move that was cut off is taken up in the same way.
// Before Run: transport stopped, notes saved, no file of the dictation open. BringBack: the same for a
// dictation of this number in Current.
// Errors: traced; Run and BringBack return false and Reason() holds a sentence for the user.
// Thread: the window thread.
class MoveToSent {
public:
    // record: any path of the dictation; only its file name counts. user must outlive the move.
    MoveToSent(const CurrentUser& user, const LPath& record, AskQueue isQueued);
    ~MoveToSent();
    MoveToSent(const MoveToSent&) = delete;
    MoveToSent& operator=(const MoveToSent&) = delete;

    // Moves notes and record, writes "senddate", "recipient" and "sendstatus" into the moved record, moves
    // the audio. Notes may be missing; without record or audio the move fails. A dictation that has the same
    // number in Sent gets a new number there. Waits two seconds for each file that another program holds.
    // False when a file cannot be moved; everything is then back in Current, and Reason says why.
    // Units:  now in seconds since 1970.
    bool Run(std::string_view recipient, int64_t now);
    // Moves the files of a sent dictation back to Current. A dictation that has its number there gets a new
    // one. False when the queue names the dictation, or a file cannot be moved; it is then whole in Sent.
    // Where not even that could be restored, the journal stays, and its files come to Current later.
    bool BringBack();
    // Sentences for the user; empty unless Run or BringBack failed.
    const char* Reason() const { return m_reason; }
    // Whether the reason would keep back every other dictation as well.
    bool ConcernsAll() const;
    const DictationFiles& Sent() const { return m_sent; }
    // Makes the move final; to be called once the dictation is in the queue.
    void Commit();

    // Settles an earlier unfinished move, if there is one: commits it when the dictation is in the queue or
    // was sent, and undoes it otherwise. False while it stays unfinished, because the queue or a file cannot
    // be read or moved.
    static bool TakeUp(const CurrentUser& user, const AskQueue& isQueued);
    // The lock file that a move holds.
    static LPath LockOf(const CurrentUser& user);

private:
    LFileLock::Result TakeTurn();
    bool TakeUpJournal();
    bool WriteJournal() const;
    const char* FindObstacle();
    const char* FindObstacleBack();
    bool MakeRoom() const;
    bool MoveAll(std::string_view recipient, int64_t now);
    bool Settle();
    bool PutBack();

    const CurrentUser& m_user;
    AskQueue m_isQueued;
    LPath m_journal;
    LFileLock m_turn;  // another Windows session may be moving in the same folder
    DictationFiles m_current;
    DictationFiles m_sent;
    DictationRecord m_before;  // the record before the move, for the keys of an earlier sending
    const char* m_reason = "";
    bool m_hasNotes = false;
    bool m_pending = false;  // begun, and neither committed nor undone
};
