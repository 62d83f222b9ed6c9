#include "store/MoveToSent.h"

#include <utility>

#include "base/LFile.h"
#include "base/LLeftOver.h"
#include "base/LProfile.h"
#include "base/LTrace.h"
#include "store/DictationStore.h"
#include "store/PendingInsert.h"
#include "store/SettingsKeys.h"
#include "store/TakeBack.h"

// A transaction over three files and the queue, with a journal for undoing it. The audio moves last and comes
// back first: as long as it is in Current the dictation is not sent, so the place of the audio tells after a
// crash how far the move had come. PutBack is idempotent and can therefore be cut off and repeated.
// Copying first and deleting afterwards was rejected: two complete copies leave open which one counts.
// Settle() decides about a journal that it finds. Queued: commit. Not moved completely: undo, since only
// complete moves are queued; a way back that was cut off is completed by that. Moved completely but not
// queued: commit when the record says that it was sent, undo otherwise. When the queue or the record cannot
// be read, the journal stays and nothing is moved.

namespace {

constexpr char kJournalWithNotes = '+';  // follows the file name of a dictation that has notes

constexpr char kUnreadable[] =
    "Its record cannot be read. It may be open in another program. It stays in the list; please try again.";
constexpr char kReadOnly[] =
    "Its record is write-protected and could not be marked as sent. It stays in the list; please remove the "
    "protection and send it again.";
constexpr char kEarlierMove[] =
    "The files of a dictation that was sent earlier are still open in another program. It stays in the list; "
    "please try again in a moment.";
constexpr char kSameNumber[] =
    "Another dictation of the same number waits to be sent, or its files are open in another program. It "
    "stays in the list; please try again later.";
constexpr char kUnwritable[] =
    "The data folder cannot be written to. The disk may be full or write-protected. It stays in the list.";
constexpr char kUnmovable[] =
    "One of its files may be open in another program, or the disk may be full. It stays in the list.";

// The same on the way back.
constexpr char kStillQueued[] =
    "It still waits to be sent, or is being sent. It can be recovered when it has been sent.";
constexpr char kQueueUnreadable[] =
    "Whether it still waits to be sent cannot be told: the send queue is open in another program. Please try "
    "again.";
constexpr char kNotSent[] = "It is no longer among the sent dictations.";
constexpr char kUnreadableBack[] =
    "Its record cannot be read. It may be open in another program. Please try again.";
constexpr char kEarlierMoveBack[] =
    "The files of another dictation that was sent or recovered are still open in another program. Please try "
    "again in a moment.";
constexpr char kSameNumberBack[] =
    "A dictation of the same number stands in the list, and its files are open in another program. Please "
    "try "
    "again later.";
constexpr char kSameNumberInserts[] =
    "A dictation of the same number stands in the list, and a recording waits to be inserted into it. You "
    "are "
    "asked about it when Corvane starts; please answer that first.";
constexpr char kUnwritableBack[] =
    "The data folder cannot be written to. The disk may be full or write-protected.";
constexpr char kUnmovableBack[] =
    "One of its files may be open in another program, or the disk may be full. Please try again.";

// The journal of a committed move that could not be deleted. Until it can be deleted it must be ignored: by
// the next start the dictation is sent, and its record says so.
LPath s_settledJournal;

LPath JournalPath(const CurrentUser& user) {
    return LPath::Join(LFolderOf(user.userFile.View()), LLeftOver::kMove);
}

bool DeleteJournal(const LPath& journal) {
    const bool isGone = LFile::IsAbsent(journal) || LFile::Delete(journal, kMoveWaitMs);
    if (!isGone) LTrace("MoveToSent unable to delete journal", journal.View());
    s_settledJournal = isGone ? LPath() : journal;
    return isGone;
}

bool MoveAway(const LPath& current, const LPath& sent) {
    if (LFile::Move(current, sent, kMoveWaitMs)) return true;
    LTrace("MoveToSent::Run unable to move file", current.View());
    return false;
}

}  // namespace

MoveToSent::MoveToSent(const CurrentUser& user, const LPath& record, AskQueue isQueued)
    : m_user(user),
      m_isQueued(std::move(isQueued)),
      m_journal(JournalPath(user)),
      m_current(DictationFiles::OfPath(record).InFolder(user.currentFolder)),
      m_sent(m_current.InFolder(user.sentFolder)) {}

MoveToSent::~MoveToSent() {
    if (m_pending) PutBack();
}

bool MoveToSent::Run(std::string_view recipient, int64_t now) {
    m_reason = FindObstacle();
    if (*m_reason != 0) {
        LTrace("MoveToSent::Run refused", m_reason);
        return false;
    }
    m_hasNotes = !LFile::IsAbsent(m_current.notes);
    if (!WriteJournal()) {
        LTrace("MoveToSent::Run unable to write journal", m_journal.View());
        m_reason = kUnwritable;
        return false;
    }
    m_pending = true;
    if (MoveAll(recipient, now)) return true;
    m_reason = kUnmovable;
    PutBack();
    return false;
}

bool MoveToSent::ConcernsAll() const {
    return m_reason == kUnwritable || m_reason == kEarlierMove;
}

LFileLock::Result MoveToSent::TakeTurn() {
    return m_turn.Take(LockOf(m_user), kMoveWaitMs);
}

LPath MoveToSent::LockOf(const CurrentUser& user) {
    return JournalPath(user).WithExtension(LLeftOver::kLock);
}

// Checks everything that can be known before the first file is moved. Returns the sentence for the user,
// empty when nothing is in the way. Without a lock file nothing is moved, even where the journal could be
// written: another session might take the move for one that was cut off, and undo it.
const char* MoveToSent::FindObstacle() {
    const LFileLock::Result turn = TakeTurn();
    if (turn == LFileLock::Result::Failed) return kUnwritable;
    if (turn == LFileLock::Result::Held || !TakeUpJournal()) return kEarlierMove;
    m_before = DictationRecord::Read(m_current.record);
    if (m_before.result != LReadResult::Values) return kUnreadable;
    if (LFile::IsReadOnly(m_current.record)) return kReadOnly;
    return MakeRoom() ? "" : kSameNumber;
}

// Gives a dictation of the same number in Sent another one: it may be the only copy.
bool MoveToSent::MakeRoom() const {
    if (!m_sent.AnyExists()) return true;
    return m_isQueued(m_sent.audio) == QueueAnswer::No && RenumberDictation(m_user, m_sent);
}

// Moves the three files, the audio last (see above).
bool MoveToSent::MoveAll(std::string_view recipient, int64_t now) {
    if (m_hasNotes && !MoveAway(m_current.notes, m_sent.notes)) return false;
    LProfile::Flush(m_current.record);
    if (!MoveAway(m_current.record, m_sent.record)) return false;
    DictationRecord values;
    values.sendDate = now;
    values.recipient = recipient;
    values.sendStatus = RecordKeys::kStatusSending;
    if (!WriteSendKeys(m_sent.record, values)) return false;
    LProfile::Flush(m_sent.record);
    return MoveAway(m_current.audio, m_sent.audio);
}

void MoveToSent::Commit() {
    m_pending = false;
    DeleteJournal(m_journal);
    m_turn.Release();
}

// Checks everything that can be known before the first file is moved back, and makes room for it. Returns the
// sentence for the user, empty when nothing is in the way.
const char* MoveToSent::FindObstacleBack() {
    const LFileLock::Result turn = TakeTurn();
    if (turn == LFileLock::Result::Failed) return kUnwritableBack;
    if (turn == LFileLock::Result::Held || !TakeUpJournal()) return kEarlierMoveBack;
    const LReadResult record = DictationRecord::Read(m_sent.record).result;
    if (record != LReadResult::Values) return record == LReadResult::Absent ? kNotSent : kUnreadableBack;
    const QueueAnswer queued = m_isQueued(m_sent.audio);
    if (queued != QueueAnswer::No) return queued == QueueAnswer::Yes ? kStillQueued : kQueueUnreadable;
    if (!m_current.AnyExists()) return "";
    PendingInsert insert;
    if (PendingInsert::Read(m_current, insert) != PendingInsert::Result::Absent) return kSameNumberInserts;
    return RenumberDictation(m_user, m_current) ? "" : kSameNumberBack;
}

bool MoveToSent::BringBack() {
    m_reason = FindObstacleBack();
    m_hasNotes = !LFile::IsAbsent(m_sent.notes);
    if (*m_reason == 0 && !WriteJournal()) m_reason = kUnwritableBack;
    if (*m_reason != 0) {
        LTrace("MoveToSent::BringBack refused", m_reason);
        return false;
    }
    const bool isBack = MoveDictationFiles(m_sent, m_current);
    if (!isBack) m_reason = kUnmovableBack;
    // The list shows one row for each number.
    const std::optional<int32_t> number = NumberOfFileName(m_current.record);
    if (isBack && number && DictationRecord::Read(m_current.record).number != number)
        Settings::Write(m_current.record, RecordKeys::kNumber, *number);
    if (isBack || !m_current.AnyExists()) Commit();
    return isBack;
}

// Moves the files back, the audio first. False while the journal stays, with work left to do.
bool MoveToSent::PutBack() {
    m_pending = false;
    bool done = TakeBack::Audio(m_user, m_sent, m_current);
    done = TakeBack::Record(m_sent, m_current) && done;
    const DictationRecord record = DictationRecord::Read(m_current.record);
    if (record.sendStatus == RecordKeys::kStatusSending)
        done = WriteSendKeys(m_current.record, m_before) && done;
    LProfile::Flush(m_current.record);
    if (m_hasNotes) done = TakeBack::Notes(m_sent, m_current) && done;
    if (!done || record.result == LReadResult::Unreadable) return false;
    return LFile::Delete(m_journal, kMoveWaitMs) || LFile::IsAbsent(m_journal);
}

bool MoveToSent::WriteJournal() const {
    std::string text(LFileNameOf(m_current.record.View()));
    if (text.empty()) return false;
    if (m_hasNotes) text.push_back(kJournalWithNotes);
    return LFile::WriteWhole(m_journal, m_journal.WithExtension(LLeftOver::kJournal),
                             {reinterpret_cast<const uint8_t*>(text.data()), text.size()});
}

bool MoveToSent::TakeUp(const CurrentUser& user, const AskQueue& isQueued) {
    if (LFile::IsAbsent(JournalPath(user))) return true;
    MoveToSent move(user, LPath(), isQueued);
    return move.TakeTurn() == LFileLock::Result::Taken && move.TakeUpJournal();
}

// Settles the move named by the journal, if there is one. The holder of the lock finds only journals of
// programs that have ended, or of a move that could not be undone. False when a move stays unfinished.
bool MoveToSent::TakeUpJournal() {
    std::string text(kPathSize, '\0');
    {
        LFile file;
        const LReadResult result = LFile::OpenToRead(m_journal, file);
        if (result != LReadResult::Values) return result == LReadResult::Absent;
        text.resize(file.Read({reinterpret_cast<uint8_t*>(text.data()), text.size()}));
        if (text.empty() && file.Size() > 0) return false;
    }
    if (s_settledJournal == m_journal) return DeleteJournal(m_journal);
    std::string_view name = text;
    const bool hasNotes = name.ends_with(kJournalWithNotes);
    if (hasNotes) name.remove_suffix(1);
    // Only the bare name of a record is accepted: the journal must not be able to name files elsewhere.
    if (!NumberOfFileName(LPath(name)) || LFileNameOf(name) != name) {
        LTrace("MoveToSent::TakeUp unreadable journal", m_journal.View());
        return DeleteJournal(m_journal);
    }
    MoveToSent move(m_user, LPath(name), m_isQueued);
    move.m_hasNotes = hasNotes;
    return move.Settle();
}

// Commits or undoes the move of a journal (see above); false while this cannot be decided or done.
bool MoveToSent::Settle() {
    const QueueAnswer queued = m_isQueued(m_sent.audio);
    if (queued == QueueAnswer::Yes) return DeleteJournal(m_journal);
    const bool isMoved = LFile::IsAbsent(m_current.record) && LFile::IsAbsent(m_current.audio) &&
                         !LFile::IsAbsent(m_sent.record) && !LFile::IsAbsent(m_sent.audio);
    if (!isMoved) return PutBack();  // only complete moves get into the queue
    if (queued == QueueAnswer::Unknown) return false;
    const DictationRecord record = DictationRecord::Read(m_sent.record);
    if (record.result == LReadResult::Unreadable) return false;
    const bool isSent = record.sendStatus != RecordKeys::kStatusSending;
    return isSent ? DeleteJournal(m_journal) : PutBack();
}
