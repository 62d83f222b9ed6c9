#include "send/BGSend.h"

#include <algorithm>
#include <utility>

#include "base/LFile.h"
#include "base/LLeftOver.h"
#include "base/LText.h"
#include "base/LTime.h"
#include "send/RecipientDeletion.h"
#include "send/SendItem.h"

// One pass of the thread: read the head as the holder of the sender's lock, convert and deliver it, remove
// it. Neither the queue's critical section nor its lock file is held during conversion and delivery, which
// may take minutes; an epoch counter (m_era) tells afterwards whether the user emptied the queue meanwhile,
// so that the removal does not hit an entry that was added later.
// An entry that was sent but could not be removed is kept in m_finished, so that the same run does not
// deliver it twice; after a restart the record's status "Sent" serves the same purpose
// (SendItem::IsDelivered).
// An entry whose files another program holds open goes behind the others. Leaving it at the head would stop
// the whole queue, and letting it fail would cost the user an action. Entries that fail are removed: a failed
// send is not tried again, the error text says why.
// One program sends for all sessions on a data folder. Two senders would deliver the same head twice, and the
// removal by one could erase an entry added by the other.

static constexpr char kUntoldFile[] = "untold.txt";
static constexpr char kQueueUnwritable[] = "Corvane internal files are read only or corrupt.";

// How long another program, such as a virus scanner, may hold the queue file: after the first two limits
// (reading, removing) the thread reports an error and goes on trying; after kChangeLimitMs a call of the
// owner fails, since the window waits for it.
static constexpr uint32_t kReadLimitMs = 5000;
static constexpr uint32_t kRemoveLimitMs = 2000;
static constexpr uint32_t kChangeLimitMs = 500;
static constexpr uint32_t kRetryMs = 50;
// Pause of the queue after every entry was put off in vain.
static constexpr uint32_t kKeptRetryMs = 60000;
static constexpr uint32_t kLateRetryMs = 1000;  // between attempts after the limit
static constexpr uint32_t kElsewhereMs = 1000;  // between looks at the lock while another program sends

// Repeats an attempt for as long as the calling window may be kept waiting.
template <class Attempt>
static bool TryShortly(Attempt attempt) {
    const uint32_t begun = LTickMs();
    while (!attempt()) {
        if (LTickMs() - begun >= kChangeLimitMs) return false;
        LSignalObject().Wait(kRetryMs);
    }
    return true;
}

// Receives progress and errors of the stages of one item. Keeps the first error text, which names the cause.
// It is told before the stages go on: the next thing may be the status "Sent", and then a kill.
class BGSend::ItemContext final : public ProcessContext {
public:
    ItemContext(BGSend& queue, const Work& work) : m_queue(queue), m_work(work) {}
    bool CancelRequested() override { return m_queue.IsCancelled(m_work); }
    void SetProgress(double fraction) override {
        if (m_shown != nullptr)  // the typist's name becomes known on the way
            m_queue.SetActivity(
                {SendActivity::State::Sending, m_shown->DictationName(), m_shown->TypistName()});
        m_queue.SetItemProgress(fraction);
    }
    void SetStatus(std::string_view) override {}  // the main window shows the bar alone
    void SetError(std::string_view text) override {
        if (!m_error.empty() || text.empty()) return;
        m_error = text;
        if (m_item) Tell(*m_item);
    }
    void Show(const SendItem& item) { m_shown = &item; }
    void TellAtOnce(const SendItem& item) { m_item = &item; }
    void Tell(const SendItem& item) {
        m_queue.SetErrorOf(m_work.entry.user, {m_error, item.DictationName(), item.TypistName()});
    }
    const std::string& Error() const { return m_error; }

private:
    BGSend& m_queue;
    const Work& m_work;
    const SendItem* m_item = nullptr;
    const SendItem* m_shown = nullptr;
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

bool BGSend::Add(const LPath& dictation, const LPath& recipient, uint32_t user,
                 const std::function<bool()>& isStill) {
    // A deletion that is pending would give the number to another one when it is finished.
    const auto mayAdd = [&] {
        return !RecipientDeletion(m_data, user, m_queue).IsPending() && (!isStill || isStill());
    };
    const bool added = TryShortly([&] {
        LLock lock(m_queueLock);
        int32_t count = 0;
        if (!m_queue.Append({dictation, recipient, user, true}, count, mayAdd)) return false;
        SetRange(count);
        return true;
    });
    m_toldUnusable = false;
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
    // An inactive thread has at most a few instructions left.
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
    {
        LLock lock(m_stateLock);  // the queue may have been emptied while it is being sent
        if (!m_inWork.Empty() && LEqualNoCase(m_inWork.View(), dictation.View())) return QueueAnswer::Yes;
    }
    LLock lock(m_queueLock);
    return m_queue.Contains(dictation);
}

// The thread ends for it, since an item in work names its files and its recipient as they were.
template <class Change>
BGSend::Outcome BGSend::WhileNobodySends(uint32_t waitMs, Change change) {
    Outcome result = Outcome::Busy;
    {
        LLock lock(m_stateLock);  // what is on its way may have arrived, and would be sent again
        if (!m_inWork.Empty()) return result;
    }
    if (LFileLock sending; Stop(waitMs) && sending.Take(m_sendingLock, waitMs) == LFileLock::Result::Taken) {
        LLock lock(m_queueLock);
        result = change();
    }
    StartSending();
    return result;
}

BGSend::Outcome BGSend::DeleteRecipient(uint32_t user, int32_t index, uint32_t waitMs,
                                        const std::function<bool()>& isStill) {
    return WhileNobodySends(waitMs, [&] {
        RecipientDeletion deletion(m_data, user, m_queue);
        // Here, where no other session can delete one: its deletion may have been what was waited for.
        if (!deletion.IsPending() && !isStill()) return Outcome::Changed;
        if (deletion.Begin(index)) return Outcome::Done;
        return deletion.IsPending() ? Outcome::Unfinished : Outcome::Failed;
    });
}

bool BGSend::SettleDeletion(uint32_t user) {
    {
        LLock lock(m_queueLock);
        LFileLock sending;
        if (!RecipientDeletion(m_data, user, m_queue).IsPending()) return true;
        if (!FinishDeletion(user, sending)) return false;
    }
    StartSending();  // what waited for it need not wait out its pause
    return true;
}

BGSend::Outcome BGSend::TakeOut(const LPath& dictation, uint32_t waitMs, const std::function<bool()>& move) {
    const auto change = [&] {
        if (!move()) return Outcome::Failed;
        // An entry that stays finds its dictation in Current, and goes without a word.
        if (int32_t count = 0; m_queue.Remove(dictation, count)) SetRange(count);
        return Outcome::Done;
    };
    {
        LLock lock(m_queueLock);
        std::vector<SendQueueEntry> entries;
        if (!m_queue.ReadAll(entries)) return Outcome::Busy;
        const bool isNext =
            !entries.empty() && LEqualNoCase(entries.front().dictation.View(), dictation.View());
        if (!isNext) return change();
    }
    return WhileNobodySends(waitMs, change);
}

std::optional<int32_t> BGSend::WaitingFor(const LPath& recipient) const {
    LLock lock(m_queueLock);
    return ::WaitingFor(recipient, m_queue);
}

// Finishes a deletion of a recipient that was cut off: until then his number may mean another one.
bool BGSend::FinishDeletion(uint32_t user, LFileLock& sending) {
    RecipientDeletion deletion(m_data, user, m_queue);
    if (!deletion.IsPending()) return true;
    return sending.TryTake(m_sendingLock) == LFileLock::Result::Taken && deletion.Finish();
}

bool BGSend::Look(SendQueueView& view) const {
    {
        LLock lock(m_stateLock);
        view.inWork = m_inWork;
        view.fraction = m_itemFraction;
    }
    LLock lock(m_queueLock);
    return m_queue.ReadAll(view.entries);
}

double BGSend::GetProgress() const {
    LLock lock(m_stateLock);
    return m_range.LastAccepted();
}

SendActivity BGSend::Activity() const {
    LLock lock(m_stateLock);
    return m_activity;
}

void BGSend::SetActivity(SendActivity activity) {
    {
        LLock lock(m_stateLock);
        if (m_activity == activity) return;
        m_activity = std::move(activity);
    }
    if (m_owner) m_owner->PostSendProgress();
}

void BGSend::KeepErrorsIn(const LPath& userFolder) {
    LLock lock(m_errorLock);
    m_errorFolder = userFolder;
    m_errors.KeepIn(LPath::Join(userFolder.View(), kUntoldFile));
}

// Errors that no file keeps go on being told here.
void BGSend::LeaveErrors() {
    LLock lock(m_errorLock);
    m_errorFolder = LPath();
    if (m_errors.IsKept()) m_errors = UntoldErrors();
}

SendError BGSend::PendingError() const {
    LLock lock(m_errorLock);
    return m_errors.All();
}

void BGSend::ForgetError(const SendError& told) {
    LLock lock(m_errorLock);
    m_errors.Forget(told);
}

SendError BGSend::TakeError() {
    SendError error = PendingError();
    ForgetError(error);
    return error;
}

void BGSend::ThreadFunction() {
    LFileLock sending;
    while (GoesOn()) {
        Work work;
        if (!Persist(kReadLimitMs, [&] { return TryTakeHead(work, sending); })) continue;
        if (!work.isTaken) return;
        if (work.isElsewhere) {
            m_stopSending.Wait(kElsewhereMs);
        } else if (work.isUnsettled) {
            KeepForLater(work, sending);
        } else if (work.isFinished || MakeFile(work) != ProcessResult::Stopped) {
            m_keptInRow = 0;
            Persist(kRemoveLimitMs, [&] { return TryRemoveHead(work); });
        } else if (!IsCancelled(work)) {
            KeepForLater(work, sending);
        }
    }
}

// Repeats an attempt until it succeeds; false when a stop was requested before that. A duration beyond
// limitMs is reported to the user.
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

// Reads the head of the queue, as the sender if the lock can be had. False when the queue cannot be read or
// the lock file cannot be created. An empty queue leaves work.isTaken false and the thread inactive: from
// then on StartSending starts a new one. The lock is taken before the head is read, since its previous holder
// may just have removed an entry.
bool BGSend::TryTakeHead(Work& work, LFileLock& sending) {
    LLock lock(m_queueLock);
    const LFileLock::Result sender = sending.TryTake(m_sendingLock);
    int32_t count = 0;
    if (!m_queue.ReadHead(work.entry, count)) return false;
    work.isTaken = m_isActive = count > 0;
    work.isElsewhere = sender == LFileLock::Result::Held;
    if (!work.isTaken || work.isElsewhere) return true;
    if (sender == LFileLock::Result::Failed) return false;
    if (RecipientDeletion(m_data, work.entry.user, m_queue).IsPending()) {
        work.isUnsettled = !FinishDeletion(work.entry.user, sending);
        if (!m_queue.ReadHead(work.entry, count)) return false;
    }
    work.era = m_era;
    work.isFinished =
        m_finished && m_finished->dictation == work.entry.dictation && m_finished->user == work.entry.user;
    SetRange(count);
    return true;
}

// Converts and delivers the entry. A dictation that is put off is reported to the user once, until it is sent
// or fails.
ProcessResult BGSend::MakeFile(const Work& work) {
    ItemContext context(*this, work);
    SendItem item(
        work.entry, m_data, [this](const LPath& audio) { return IsQueued(audio); }, context);
    const auto told = std::ranges::find(m_toldKept, work.entry.dictation);
    const bool wasTold = told != m_toldKept.end();
    if (!wasTold) context.TellAtOnce(item);
    context.Show(item);
    SetInWork(work.entry.dictation);
    const ProcessResult result = item.Send();
    SetInWork(LPath());
    const bool isSent = result == ProcessResult::Done;
    SetActivity({isSent ? SendActivity::State::Sent : SendActivity::State::Idle, item.DictationName(),
                 item.TypistName()});
    const bool isKept = result == ProcessResult::Stopped;
    if (wasTold && !isKept) {
        context.Tell(item);
        m_toldKept.erase(told);
    }
    if (isKept && !wasTold && !context.Error().empty()) m_toldKept.push_back(work.entry.dictation);
    return result;
}

// The files of the dictation are held by another program: its entry goes behind the others, so that they need
// not wait. After a round in which every entry was put off, the thread gives up the sender's lock and pauses.
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

// Removes the entry that was sent or failed, unless the queue was emptied meanwhile. False when the file
// cannot be changed; m_finished then remembers that the entry must not be sent again.
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

// Only a stop request that still stands ends the thread; one that was withdrawn has at most dropped an item.
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
        m_itemFraction = itemFraction;
        value = m_range.OfItem(itemFraction);
    }
    SetProgress(value);
}

void BGSend::SetInWork(const LPath& dictation) {
    LLock lock(m_stateLock);
    m_inWork = dictation;
    m_itemFraction = 0;
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

// False when too many errors wait already.
bool BGSend::SetError(const SendError& error) {
    LLock lock(m_errorLock);
    return m_errors.Add(error);
}

// An error about a dictation. The user who dictated it is told: now if he is logged on, else when he logs on.
void BGSend::SetErrorOf(uint32_t user, const SendError& error) {
    const LPath folder = UserFolderPath(m_data.folder, user);
    LLock lock(m_errorLock);
    const bool isOthers = !m_errorFolder.Empty() && folder != m_errorFolder;
    if (!isOthers || !KeepForOther(folder, error)) m_errors.Add(error);
}

// False when that user's folder is not there to write into, or belongs to another session of his: the error
// is then told here.
bool BGSend::KeepForOther(const LPath& userFolder, const SendError& error) const {
    LFileLock inUse;
    if (!LFile::IsFolder(userFolder) ||
        inUse.TryTake(LPath::Join(userFolder.View(), LLeftOver::kInUseLock)) != LFileLock::Result::Taken)
        return false;
    UntoldErrors errors;
    errors.KeepIn(LPath::Join(userFolder.View(), kUntoldFile));
    return errors.IsKept() && errors.Add(error) && LFile::Exists(LPath::Join(userFolder.View(), kUntoldFile));
}

void BGSend::TellUnusable() {
    if (!m_toldUnusable && SetError({kQueueUnwritable, {}, {}})) m_toldUnusable = true;
}
