#pragma once

#include <atomic>
#include <cstdint>
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
#include "store/CurrentUser.h"

// Who wants to know how sending goes: the main window, which posts itself a message.
struct BGSendOwner {
    virtual ~BGSendOwner() = default;
    // GetProgress() has changed. Thread: the send thread mostly, and the owner's own; returns at once.
    virtual void PostSendProgress() = 0;
};

// The queue of dictations to send and the thread of lowest priority that works it off: it takes the head,
// makes and delivers it (SendItem), removes it whether it was sent or failed, and ends when the queue is
// empty. The queue is a file and so survives the program: an entry leaves it only when it is done with, and a
// run that was stopped or killed meanwhile finds it at the head again. Of several programs on one data folder
// one sends, whosever the entries are: it holds the lock file "sending.lck". The threads of the others look
// once a second, until the queue is empty or the lock is free.
// Errors: whatever goes wrong is kept as one text for the user; the first one stands until it is taken. While
//         the queue file cannot be read or changed nothing is sent; the thread tells so after some seconds,
//         once until it could or an entry is added, and goes on trying.
// Thread: the owner's, for everything but RequestStop, GetProgress and TakeError (any). The destructor stops
//         the thread and waits for it.
class BGSend final : private LThread {
public:
    BGSend() = default;
    ~BGSend() override;

    // Before the first start: the owner (nullptr: none) and the queue file, "bgsend.dat" in the data folder,
    // which tells where the users' files are.
    void SetOwner(BGSendOwner* owner) { m_owner = owner; }
    void SetQueuePath(const LPath& path);

    // Appends an entry (the audio file in Sent, the recipient's record file, the sending user) and starts the
    // thread. False, with an error text, when the queue file cannot be written.
    bool Add(const LPath& dictation, const LPath& recipient, uint32_t user);

    // Starts the thread unless it runs already, in which case it will not end before it has seen the whole
    // queue.
    void StartSending();
    // Asks the thread to end at its next check and waits; true when it has ended. What it was sending stays
    // at the head.
    bool Stop(uint32_t timeoutMs);
    void RequestStop();
    using LThread::WaitForEnd;

    // The user's "Cancel": stops the thread, clears the error text, empties the queue and starts again. An
    // item that does not stop in the time given is dropped at its next check. A queue that cannot be emptied
    // leaves a new error text.
    void ClearQueue(uint32_t waitMs = 5000);
    // Whether a dictation (its audio file in Sent) waits in the queue; unknown while its file cannot be read.
    QueueAnswer IsQueued(const LPath& dictation) const;

    // The progress that was posted last, 0 to 1.
    double GetProgress() const;
    // The pending error, and clears it.
    SendError TakeError();

private:
    class ItemContext;
    struct Work {
        SendQueueEntry entry;
        uint32_t era = 0;
        bool isTaken = false;
        bool isElsewhere = false;  // another program sends
        bool isFinished = false;   // an earlier run sent it and could not remove it
    };

    void ThreadFunction() override;
    bool TryTakeHead(Work& work, LFileLock& sending);
    ProcessResult MakeFile(const Work& work);
    bool TryRemoveHead(const Work& work);
    void KeepForLater(const Work& work, LFileLock& sending);
    template <class Attempt>
    bool Persist(uint32_t limitMs, Attempt attempt);
    bool GoesOn();
    bool Empty();

    bool IsCancelled(const Work& work) const;
    void SetItemProgress(double itemFraction);
    void SetRange(int32_t entries);
    void SetProgress(double value);
    bool SetError(const SendError& error);
    void TellUnusable();

    BGSendOwner* m_owner = nullptr;
    DataFolder m_data;

    mutable LCriticalSection m_queueLock;  // guards the next four; taken before m_stateLock
    SendQueueFile m_queue;
    LPath m_sendingLock;
    std::optional<SendQueueEntry> m_finished;  // sent or failed, and to be removed from the head
    bool m_isActive = false;                   // the thread will look at the queue again before it ends

    mutable LCriticalSection m_stateLock;  // guards m_range and m_error
    SendProgressRange m_range;
    SendError m_error;

    // The thread's own: whose files could not be read, as the user was told, and how many in a row.
    std::vector<LPath> m_toldKept;
    int32_t m_keptInRow = 0;

    LSignalObject m_added;           // there is something new to send
    LSignalObject m_stopSending;     // unlike the thread's own a start may withdraw it
    std::atomic<uint32_t> m_era{0};  // counts how often the queue was emptied; changes under m_queueLock
    std::atomic<bool> m_toldUnusable{false};  // that the queue file cannot be used, and it still cannot
};
