#pragma once

#include <functional>

#include "base/LThread.h"
#include "store/CurrentUser.h"
#include "store/QueueAnswer.h"

// Collects the status files that typists have left in their shared folders: applies each and deletes it. On a
// thread, since a folder of the network can take half a minute to say that it is not there.
// Thread: the owner's. The destructor waits for the thread.
class CollectStatus final : private LThread {
public:
    ~CollectStatus() override { Stop(); }

    // Begins a round for this user. False, and nothing is begun, while one runs. isQueued and done are called
    // on the thread, done at the end of the round.
    bool Begin(const DataFolder& data, const CurrentUser& user, AskQueue isQueued,
               std::function<void()> done);
    // True when the thread has ended.
    using LThread::RequestStop;
    using LThread::Stop;

private:
    void ThreadFunction() override;

    DataFolder m_data;
    CurrentUser m_user;
    AskQueue m_isQueued;
    std::function<void()> m_done;
};
