#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/LFileLock.h"
#include "base/LPath.h"
#include "base/LProcess.h"
#include "base/LThread.h"
#include "send/SendError.h"
#include "send/SendProgressRange.h"
#include "send/SendQueueFile.h"
#include "send/UntoldErrors.h"
#include "store/CurrentUser.h"

// What the queue does: the dictation that is being sent, or was sent last, and its typist. Names may be
// empty.
struct SendActivity {
    enum class State { Idle, Sending, Sent };

    State state = State::Idle;
    std::string dictation;
    std::string typist;
    bool operator==(const SendActivity&) const = default;
};

// Listener for the progress of sending: the main window, which posts itself a message.
struct BGSendOwner {
    virtual ~BGSendOwner() = default;
    // GetProgress() or Activity() has changed. Called mostly on the send thread, sometimes on the owner's
    // own; returns at once.
    virtual void PostSendProgress() = 0;
};

// What waits in the queue, in the order of sending.
struct SendQueueView {
    std::vector<SendQueueEntry> entries;
    LPath inWork;         // the dictation that this program is sending; empty when it sends none
    double fraction = 0;  // how far that one is, 0 to 1

    bool operator==(const SendQueueView&) const = default;
};

// The queue of dictations to send, and the thread of lowest priority that works it off: it takes the head,
// converts and delivers it (SendItem), removes it whether it was sent or failed, and ends when the queue is
// empty.
// The queue is a file and so survives the program. An entry leaves it only when it is finished; a run that
// was stopped or killed in between finds the entry at the head again. Of several programs on one data folder
// one sends the entries of all: it holds the lock file "sending.lck". The threads of the others look once a
// second, until the queue is empty or the lock is free.
// Units:  progress is a fraction of the whole queue, 0 to 1.
// Errors: kept as one text for the user; the first one stands until it is answered, and those that follow are
//         named below it. They survive the program (UntoldErrors). While the queue file cannot be read or
//         changed, nothing is sent; the thread reports this after some seconds, once until the file works
//         again or an entry is added, and goes on trying.
// Thread: the owner's; RequestStop, GetProgress, Activity and the methods for errors: any. The destructor
//         stops the thread and waits for it.
class BGSend final : private LThread {
public:
    BGSend() = default;
    ~BGSend() override;

    // To be called before the first start: the owner (nullptr: none), and the path of the queue file,
    // "bgsend.dat" in the data folder. The users' folders are looked for in the same folder.
    void SetOwner(BGSendOwner* owner) { m_owner = owner; }
    void SetQueuePath(const LPath& path);

    // Appends an entry (the audio file in Sent, the recipient's record file, the sending user) and starts the
    // thread. False when the queue file cannot be written, or a recipient of the user is being deleted; the
    // caller tells the user. isStill, asked while no recipient can be deleted, says whether the number still
    // means the one that was chosen.
    bool Add(const LPath& dictation, const LPath& recipient, uint32_t user,
             const std::function<bool()>& isStill = {});

    // Starts the thread. One that runs already looks at the whole queue once more before it ends.
    void StartSending();
    // Asks the thread to end at its next check and waits; true when it has ended. The entry that it was
    // sending stays at the head of the queue.
    bool Stop(uint32_t timeoutMs);
    void RequestStop();
    using LThread::WaitForEnd;

    // The user's "Cancel": stops the thread, empties the queue and starts again. An item that does not stop
    // within waitMs, for which the window stands still, is dropped at its next check: a call to a server that
    // hangs cannot be interrupted. A queue that cannot be emptied leaves a new error text.
    void ClearQueue(uint32_t waitMs = 200);
    // Whether a dictation (given by its audio file in Sent) waits in the queue or is being sent; unknown
    // while the queue file cannot be read.
    QueueAnswer IsQueued(const LPath& dictation) const;

    // Deletes a recipient of a user. Sending pauses for it, for at most waitMs; Busy when it does not end in
    // that time, or another program sends.
    // Failed: nothing has changed. Unfinished: SettleDeletion goes on with it. Changed: by then the number
    // meant somebody else, as isStill says, and nothing was done.
    enum class Outcome { Done, Busy, Failed, Unfinished, Changed };
    Outcome DeleteRecipient(uint32_t user, int32_t index, uint32_t waitMs,
                            const std::function<bool()>& isStill);
    // Finishes a deletion that was cut off; until then numbers of recipients may mean others. False when it
    // cannot be finished now. To be called before a recipient is shown or chosen.
    bool SettleDeletion(uint32_t user);
    // Takes a dictation that waits out of the queue: move takes its files away, and says whether it did.
    // Where it is the next one, or in work, sending pauses for it, as above. Failed: move did not.
    Outcome TakeOut(const LPath& dictation, uint32_t waitMs, const std::function<bool()>& move);
    // How many dictations wait to be sent to a recipient; nothing while the queue file cannot be read.
    std::optional<int32_t> WaitingFor(const LPath& recipient) const;

    // Fills view; false while the queue file cannot be read, and its entries are then left as they were.
    bool Look(SendQueueView& view) const;

    // The progress that was posted last, 0 to 1.
    double GetProgress() const;
    SendActivity Activity() const;

    // Takes up the errors that an earlier run did not tell, and keeps those of this one in a file of this
    // folder until they are answered. For the one program that may write there (inuse.lck). Errors about
    // dictations of other users then wait in their folders until they log on.
    void KeepErrorsIn(const LPath& userFolder);
    // The user is about to change: what is kept in his folder waits there.
    void LeaveErrors();
    // The error that waits to be told, and its removal by the answer; errors that came in between go on
    // waiting.
    SendError PendingError() const;
    void ForgetError(const SendError& told);
    // Both in one.
    SendError TakeError();

private:
    class ItemContext;
    // The entry that the thread works on.
    struct Work {
        SendQueueEntry entry;
        // The value of m_era when the entry was taken; another value means that the queue was emptied since.
        uint32_t era = 0;
        // false: the queue is empty.
        bool isTaken = false;
        bool isElsewhere = false;  // another program sends
        bool isFinished = false;   // an earlier run sent it and could not remove it
        bool isUnsettled = false;  // its recipient is not known while another one is being deleted
    };

    void ThreadFunction() override;
    bool TryTakeHead(Work& work, LFileLock& sending);
    bool FinishDeletion(uint32_t user, LFileLock& sending);
    template <class Change>
    Outcome WhileNobodySends(uint32_t waitMs, Change change);
    ProcessResult MakeFile(const Work& work);
    bool TryRemoveHead(const Work& work);
    void KeepForLater(const Work& work, LFileLock& sending);
    template <class Attempt>
    bool Persist(uint32_t limitMs, Attempt attempt);
    bool GoesOn();
    bool Empty();

    bool IsCancelled(const Work& work) const;
    void SetItemProgress(double itemFraction);
    void SetInWork(const LPath& dictation);
    void SetRange(int32_t entries);
    void SetProgress(double value);
    void SetActivity(SendActivity activity);
    bool SetError(const SendError& error);
    void SetErrorOf(uint32_t user, const SendError& error);
    bool KeepForOther(const LPath& userFolder, const SendError& error) const;
    void TellUnusable();

    BGSendOwner* m_owner = nullptr;
    DataFolder m_data;

    mutable LCriticalSection m_queueLock;  // guards the next four; taken before m_stateLock
    SendQueueFile m_queue;
    LPath m_sendingLock;
    std::optional<SendQueueEntry> m_finished;  // sent or failed, and to be removed from the head
    bool m_isActive = false;                   // the thread will look at the queue again before it ends

    mutable LCriticalSection m_stateLock;  // guards the next four
    SendProgressRange m_range;
    LPath m_inWork;
    double m_itemFraction = 0;
    SendActivity m_activity;
    mutable LCriticalSection m_errorLock;  // guards the next two, also while a file of errors is written
    UntoldErrors m_errors;
    LPath m_errorFolder;  // of KeepErrorsIn

    // Used by the send thread alone: the dictations whose files could not be read and that the user was told
    // about, and the number of entries in a row that were put off for this reason.
    std::vector<LPath> m_toldKept;
    int32_t m_keptInRow = 0;

    LSignalObject m_added;  // an entry was added
    // Stop request. Unlike the stop event of LThread it can be withdrawn by a start.
    LSignalObject m_stopSending;
    std::atomic<uint32_t> m_era{0};  // counts how often the queue was emptied; changes under m_queueLock
    std::atomic<bool> m_toldUnusable{false};  // the user was told that the queue file is unusable
};
