#include "send/BGSend.h"

#include <utility>

#include "base/LTime.h"
#include "send/SendItem.h"

static constexpr size_t kLongestError = 259;
static constexpr char kQueueUnwritable[] = "Corvane internal files are read only or corrupt.";

// How long the thread waits for another program, such as a virus scanner, to let go of the queue file.
static constexpr uint32_t kReadLimitMs = 5000;
static constexpr uint32_t kRemoveLimitMs = 2000;
static constexpr uint32_t kRetryMs = 50;

// What a stage of the current item reports to.
class BGSend::ItemContext final : public ProcessContext {
public:
    ItemContext(BGSend& queue, const Work& work) : m_queue(queue), m_work(work) {}
    bool CancelRequested() override { return m_queue.IsCancelled(m_work); }
    void SetProgress(double fraction) override { m_queue.SetItemProgress(fraction); }
    void SetStatus(std::string_view) override {}  // the main window shows the bar alone
    void SetError(std::string_view text) override { m_queue.SetError(text); }

private:
    BGSend& m_queue;
    const Work& m_work;
};

BGSend::~BGSend() {
    Stop(kWaitForever);
}

void BGSend::SetQueuePath(const LPath& path) {
    LLock lock(m_queueLock);
    m_queue.SetPath(path);
    m_data = DataFolder::FromText(LFolderOf(path.View()));
}

bool BGSend::Add(const LPath& dictation, const LPath& recipient, uint32_t user) {
    bool added;
    {
        LLock lock(m_queueLock);
        added = m_queue.Append({dictation, recipient, user, true});
        if (added) SetRange(m_queue.Count());
    }
    if (!added) SetError(kQueueUnwritable);
    StartSending();
    return added;
}

void BGSend::StartSending() {
    {
        LLock lock(m_queueLock);
        m_startedAgain = m_isActive;
        if (m_isActive) {
            m_stopSending.Reset();
            return;
        }
        m_isActive = true;
    }
    // No longer active, the thread has at most a few instructions left.
    WaitForEnd(kWaitForever);
    m_stopSending.Reset();
    if (Start(kThreadLowest)) return;
    LLock lock(m_queueLock);
    m_isActive = false;
}

void BGSend::RequestStop() {
    m_stopSending.Signal();
}

bool BGSend::Stop(uint32_t timeoutMs) {
    RequestStop();
    return WaitForEnd(timeoutMs);
}

void BGSend::ClearQueue(uint32_t waitMs) {
    Stop(waitMs);
    TakeError();
    SetCount(0);
    StartSending();
}

bool BGSend::SetCount(int32_t count) {
    bool written;
    {
        LLock lock(m_queueLock);
        written = m_queue.SetCount(count);
        if (written) SetRange(count);
        if (written && count <= 0) {
            ++m_era;
            m_finished.reset();
        }
    }
    if (!written) SetError(kQueueUnwritable);
    if (written && count <= 0) SetProgress(0.0);
    return written;
}

int32_t BGSend::GetCount() const {
    LLock lock(m_queueLock);
    return m_queue.Count();
}

bool BGSend::IsQueued(const LPath& dictation) const {
    LLock lock(m_queueLock);
    return m_queue.Holds(dictation);
}

double BGSend::GetProgress() const {
    LLock lock(m_stateLock);
    return m_range.LastAccepted();
}

std::string BGSend::TakeError() {
    LLock lock(m_stateLock);
    return std::exchange(m_error, {});
}

void BGSend::ThreadFunction() {
    bool goesOn = true;
    while (goesOn) {
        Work work;
        if (!Persist(kReadLimitMs, [&] { return TryTakeHead(work); })) {
            goesOn = GoesOn(true);
        } else if (!work.isTaken) {
            return;
        } else if (!work.isFinished && MakeFile(work) == ProcessResult::Stopped) {
            goesOn = GoesOn(false);
        } else if (!Persist(kRemoveLimitMs, [&] { return TryRemoveHead(work); })) {
            goesOn = GoesOn(true);
        }
    }
}

// False when attempt failed until the time was over or a stop was requested.
template <class Attempt>
bool BGSend::Persist(uint32_t limitMs, Attempt attempt) {
    const uint32_t begun = LTickMs();
    while (!attempt()) {
        if (m_stopSending.Wait(kRetryMs)) return false;
        if (LTickMs() - begun < limitMs) continue;
        SetError(kQueueUnwritable);
        return false;
    }
    return true;
}

// False when the queue cannot be read. An empty one leaves work untaken; from then on StartSending starts a
// new thread.
bool BGSend::TryTakeHead(Work& work) {
    LLock lock(m_queueLock);
    int32_t count = 0;
    if (!m_queue.ReadHead(work.entry, count)) return false;
    work.isTaken = m_isActive = count > 0;
    m_startedAgain = false;
    if (!work.isTaken) return true;
    work.era = m_era;
    work.isFinished = m_finished == work.entry;
    SetRange(count);
    return true;
}

ProcessResult BGSend::MakeFile(const Work& work) {
    ItemContext context(*this, work);
    return SendItem(work.entry, m_data, context).Send();
}

// Takes away what was sent or failed, unless the queue was emptied meanwhile. False when the file cannot be
// changed; it is remembered then that the entry must not be sent once more.
bool BGSend::TryRemoveHead(const Work& work) {
    int32_t left = 0;
    {
        LLock lock(m_queueLock);
        if (work.era != m_era) return true;
        m_finished = work.entry;
        SendQueueEntry head;
        if (!m_queue.ReadHead(head, left)) return false;
        if (head == work.entry) {
            if (!m_queue.RemoveHead()) return false;
            left = m_queue.Count();
        }
        m_finished.reset();
        SetRange(left);
    }
    if (left == 0) SetProgress(0.0);
    return true;
}

// A stop that was withdrawn, or that only dropped one item, does not end the thread. Nor does a file that
// could not be used, when something was added since.
bool BGSend::GoesOn(bool gaveUp) {
    LLock lock(m_queueLock);
    m_isActive = !m_stopSending.IsSignalled() && (!gaveUp || m_startedAgain);
    return m_isActive;
}

bool BGSend::IsCancelled(const Work& work) const {
    return m_stopSending.IsSignalled() || work.era != m_era;
}

void BGSend::SetItemProgress(double itemFraction) {
    double value;
    {
        LLock lock(m_stateLock);
        value = m_range.OfItem(itemFraction);
    }
    SetProgress(value);
}

void BGSend::SetRange(int32_t entries) {
    LLock lock(m_stateLock);
    m_range.SetCount(entries);
}

void BGSend::SetProgress(double value) {
    {
        LLock lock(m_stateLock);
        if (!m_range.Accept(value)) return;
    }
    if (m_owner) m_owner->PostSendProgress();
}

void BGSend::SetError(std::string_view text) {
    LLock lock(m_stateLock);
    if (m_error.empty()) m_error = text.substr(0, kLongestError);
}
