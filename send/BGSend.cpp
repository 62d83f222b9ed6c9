#include "send/BGSend.h"

#include <utility>

#include "base/LTrace.h"
#include "send/SendItem.h"

static constexpr size_t kLongestError = 259;
static constexpr char kQueueUnwritable[] = "Corvane internal files are read only or corrupt.";

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
        SetRange(m_queue.Count());
    }
    if (!added) SetError(kQueueUnwritable);
    StartSending();
    return added;
}

void BGSend::StartSending() {
    {
        LLock lock(m_queueLock);
        if (m_isActive) {
            if (StopRequested()) m_stopWithdrawn = true;
            return;
        }
        m_isActive = true;
    }
    // No longer active, the thread has at most a few instructions left.
    WaitForEnd(kWaitForever);
    m_stopWithdrawn = false;
    if (Start(kThreadLowest)) return;
    LLock lock(m_queueLock);
    m_isActive = false;
}

void BGSend::RequestStop() {
    m_stopWithdrawn = false;
    LThread::RequestStop();
}

bool BGSend::Stop(uint32_t timeoutMs) {
    RequestStop();
    return WaitForEnd(timeoutMs);
}

void BGSend::ClearQueue(uint32_t waitMs) {
    Stop(waitMs);
    ++m_era;
    SetCount(0);
    TakeError();
    StartSending();
}

bool BGSend::SetCount(int32_t count) {
    bool written;
    {
        LLock lock(m_queueLock);
        written = m_queue.SetCount(count);
        SetRange(count);
    }
    if (!written) SetError(kQueueUnwritable);
    if (count <= 0) SetProgress(0.0);
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
    Work work;
    while (TakeHead(work)) {
        if (MakeFile(work) == ProcessResult::Stopped) {
            if (EndsAfterStop()) return;
        } else if (!RemoveHead(work)) {
            return;
        }
    }
}

// False when the queue is empty; from then on StartSending starts a new thread.
bool BGSend::TakeHead(Work& work) {
    LLock lock(m_queueLock);
    const int32_t count = m_queue.Count();
    m_isActive = count > 0;
    if (!m_isActive) return false;
    work.entry = m_queue.Head();
    work.era = m_era;
    SetRange(count);
    return true;
}

ProcessResult BGSend::MakeFile(const Work& work) {
    if (!work.entry.isWhole) {
        LTrace("BGSend::MakeFile entry is not whole");
        SetError(
            "A dictation could not be sent because its entry in the send queue was damaged. Please look "
            "through "
            "the sent dictations and send it again.");
        return ProcessResult::Failed;
    }
    ItemContext context(*this, work);
    return SendItem(work.entry, m_data, context).Send();
}

// Takes away what was sent or failed, unless the queue was emptied and filled anew meanwhile. False when the
// file cannot be changed: to go on would send the same dictation for ever.
bool BGSend::RemoveHead(const Work& work) {
    int32_t left;
    {
        LLock lock(m_queueLock);
        if (work.era != m_era || !(m_queue.Head() == work.entry)) return true;
        if (!m_queue.RemoveHead()) {
            SetError(kQueueUnwritable);
            m_isActive = false;
            return false;
        }
        left = m_queue.Count();
        SetRange(left);
    }
    if (left == 0) SetProgress(0.0);
    return true;
}

// A stop that was withdrawn, or that only dropped one item, does not end the thread.
bool BGSend::EndsAfterStop() {
    LLock lock(m_queueLock);
    m_isActive = !StopRequested() || m_stopWithdrawn;
    return !m_isActive;
}

bool BGSend::IsCancelled(const Work& work) const {
    return (StopRequested() && !m_stopWithdrawn) || work.era != m_era;
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
