#include "send/BGSend.h"

#include <algorithm>
#include <utility>

#include "base/LLeftOver.h"
#include "base/LTime.h"
#include "send/SendItem.h"

static constexpr size_t kLongestError = 259;
static constexpr char kQueueUnwritable[] = "Corvane internal files are read only or corrupt.";

// How long the thread waits for another program, such as a virus scanner, to let go of the queue file before
// it tells, and the owner before it gives up.
static constexpr uint32_t kReadLimitMs = 5000;
static constexpr uint32_t kRemoveLimitMs = 2000;
static constexpr uint32_t kChangeLimitMs = 500;
static constexpr uint32_t kRetryMs = 50;
// How long all wait when each had its turn and none of their files could be read.
static constexpr uint32_t kKeptRetryMs = 60000;
static constexpr uint32_t kLateRetryMs = 1000;  // after it told
static constexpr uint32_t kElsewhereMs = 1000;  // between two looks while another program sends

// Tries for so long as the owner may be kept waiting.
template <class Attempt>
static bool TryShortly(Attempt attempt) {
    const uint32_t begun = LTickMs();
    while (!attempt()) {
        if (LTickMs() - begun >= kChangeLimitMs) return false;
        LSignalObject().Wait(kRetryMs);
    }
    return true;
}

// What a stage of the current item reports to.
class BGSend::ItemContext final : public ProcessContext {
public:
    ItemContext(BGSend& queue, const Work& work) : m_queue(queue), m_work(work) {}
    bool CancelRequested() override { return m_queue.IsCancelled(m_work); }
    void SetProgress(double fraction) override { m_queue.SetItemProgress(fraction); }
    void SetStatus(std::string_view) override {}  // the main window shows the bar alone
    void SetError(std::string_view text) override {
        if (m_error.empty()) m_error = text;
    }
    const std::string& Error() const { return m_error; }

private:
    BGSend& m_queue;
    const Work& m_work;
    std::string m_error;
};

BGSend::~BGSend() {
    Stop(kWaitForever);
}

void BGSend::SetQueuePath(const LPath& path) {
    LLock lock(m_queueLock);
    m_queue.SetPath(path);
    m_sendingLock = LPath::Join(LFolderOf(path.View()), LLeftOver::kSendingLock);
    m_data = DataFolder::FromText(LFolderOf(path.View()));
}

bool BGSend::Add(const LPath& dictation, const LPath& recipient, uint32_t user) {
    const bool added = TryShortly([&] {
        LLock lock(m_queueLock);
        int32_t count = 0;
        if (!m_queue.Append({dictation, recipient, user, true}, count)) return false;
        SetRange(count);
        return true;
    });
    m_toldUnusable = false;
    if (!added) TellUnusable();
    StartSending();
    return added;
}

void BGSend::StartSending() {
    {
        LLock lock(m_queueLock);
        if (m_isActive) {
            m_stopSending.Reset();
            m_added.Signal();
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
    m_toldUnusable = false;
    TryShortly([this] { return Empty(); }) ? SetProgress(0.0) : TellUnusable();
    StartSending();
}

bool BGSend::Empty() {
    LLock lock(m_queueLock);
    if (!m_queue.Clear()) return false;
    SetRange(0);
    ++m_era;
    m_finished.reset();
    return true;
}

QueueAnswer BGSend::IsQueued(const LPath& dictation) const {
    LLock lock(m_queueLock);
    return m_queue.Contains(dictation);
}

double BGSend::GetProgress() const {
    LLock lock(m_stateLock);
    return m_range.LastAccepted();
}

SendError BGSend::TakeError() {
    LLock lock(m_stateLock);
    return std::exchange(m_error, {});
}

void BGSend::ThreadFunction() {
    LFileLock sending;
    while (GoesOn()) {
        Work work;
        if (!Persist(kReadLimitMs, [&] { return TryTakeHead(work, sending); })) continue;
        if (!work.isTaken) return;
        if (work.isElsewhere) {
            m_stopSending.Wait(kElsewhereMs);
        } else if (work.isFinished || MakeFile(work) != ProcessResult::Stopped) {
            m_keptInRow = 0;
            Persist(kRemoveLimitMs, [&] { return TryRemoveHead(work); });
        } else if (!IsCancelled(work)) {
            KeepForLater(work, sending);
        }
    }
}

// Goes on until attempt succeeds; false when a stop was requested before. What takes longer than the limit is
// told.
template <class Attempt>
bool BGSend::Persist(uint32_t limitMs, Attempt attempt) {
    const uint32_t begun = LTickMs();
    bool isLate = false;
    while (!attempt()) {
        isLate = isLate || LTickMs() - begun >= limitMs;
        if (isLate) TellUnusable();
        if (m_stopSending.Wait(isLate ? kLateRetryMs : kRetryMs)) return false;
    }
    m_toldUnusable = false;
    return true;
}

// False when the queue cannot be read, or nobody can become its sender. An empty one leaves work untaken;
// from then on StartSending starts a new thread. The head is read as the sender, since the one before may
// just have removed another.
bool BGSend::TryTakeHead(Work& work, LFileLock& sending) {
    LLock lock(m_queueLock);
    const LFileLock::Result sender = sending.TryTake(m_sendingLock);
    int32_t count = 0;
    if (!m_queue.ReadHead(work.entry, count)) return false;
    work.isTaken = m_isActive = count > 0;
    work.isElsewhere = sender == LFileLock::Result::Held;
    if (!work.isTaken || work.isElsewhere) return true;
    if (sender == LFileLock::Result::Failed) return false;
    work.era = m_era;
    work.isFinished = m_finished == work.entry;
    SetRange(count);
    return true;
}

ProcessResult BGSend::MakeFile(const Work& work) {
    ItemContext context(*this, work);
    SendItem item(work.entry, m_data, context);
    const ProcessResult result = item.Send();
    const bool isKept = result == ProcessResult::Stopped;
    const auto told = std::ranges::find(m_toldKept, work.entry.dictation);
    if (!isKept || told == m_toldKept.end())
        SetError({context.Error(), item.DictationName(), item.TypistName()});
    if (!isKept && told != m_toldKept.end()) m_toldKept.erase(told);
    if (isKept && told == m_toldKept.end() && !context.Error().empty())
        m_toldKept.push_back(work.entry.dictation);
    return result;
}

// Another program keeps the files of a dictation from being read. Those behind it are not kept waiting; when all have
// had their turn in vain, the next round takes its time, and whoever else sends may try.
void BGSend::KeepForLater(const Work& work, LFileLock& sending) {
    int32_t count = 0;
    const bool isMoved = Persist(kRemoveLimitMs, [&] {
        LLock lock(m_queueLock);
        return work.era != m_era || m_queue.MoveHeadToEnd(work.entry, count);
    });
    if (!isMoved || ++m_keptInRow < count) return;
    m_keptInRow = 0;
    sending.Release();
    m_added.Reset();
    m_stopSending.WaitEither(m_added, kKeptRetryMs);
}

// Takes away what was sent or failed, unless the queue was emptied meanwhile. False when the file cannot be
// changed; it is remembered then that the entry must not be sent once more.
bool BGSend::TryRemoveHead(const Work& work) {
    int32_t left = 0;
    {
        LLock lock(m_queueLock);
        if (work.era != m_era) return true;
        m_finished = work.entry;
        if (!m_queue.RemoveHead(work.entry, left)) return false;
        m_finished.reset();
        SetRange(left);
    }
    if (left == 0) SetProgress(0.0);
    return true;
}

// A stop that was withdrawn, or that only dropped one item, does not end the thread.
bool BGSend::GoesOn() {
    LLock lock(m_queueLock);
    m_isActive = !m_stopSending.IsSignalled();
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

// False when another one is still to be told.
bool BGSend::SetError(const SendError& error) {
    LLock lock(m_stateLock);
    if (m_error || !error) return false;
    m_error = error;
    m_error.text.resize(std::min(m_error.text.size(), kLongestError));
    return true;
}

void BGSend::TellUnusable() {
    if (!m_toldUnusable && SetError({kQueueUnwritable, {}, {}})) m_toldUnusable = true;
}
