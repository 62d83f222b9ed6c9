#include "store/MoveToSent.h"

#include "base/LFile.h"
#include "base/LProfile.h"
#include "base/LTrace.h"
#include "store/SettingsKeys.h"

namespace {

constexpr char kNoteName[] = "moving.txt";
constexpr char kNoteWithNotes = '+';  // follows the file name of a dictation that has notes
constexpr size_t kMaxNoteBytes = kPathSize;

LPath NotePath(const CurrentUser& user) {
    return LPath::Join(LFolderOf(user.userFile.View()), kNoteName);
}

// Where a file of Sent waits that another takes the name of: "00000012-dat.old".
LPath AsideOf(const LPath& sent) {
    std::string extension(LSplitPath(sent.View()).extension);
    if (!extension.empty()) extension.front() = '-';
    return sent.WithExtension(extension + ".old");
}

bool SetAside(const LPath& sent) {
    if (!LFile::Exists(sent)) return true;
    const LPath aside = AsideOf(sent);
    LFile::Delete(aside);
    return LFile::Move(sent, aside);
}

bool MoveAway(const LPath& current, const LPath& sent) {
    if (SetAside(sent) && LFile::Move(current, sent)) return true;
    LTrace("MoveToSent::Run unable to move file", current.View());
    return false;
}

// A file that is in Current never left it, or is back already.
bool TakeBack(const LPath& sent, const LPath& current) {
    if (LFile::Exists(current) || !LFile::Exists(sent) || LFile::Move(sent, current)) return true;
    LTrace("MoveToSent::PutBack unable to move file", sent.View());
    return false;
}

void RestoreAside(const LPath& sent) {
    const LPath aside = AsideOf(sent);
    if (LFile::Exists(aside) && !LFile::Exists(sent)) LFile::Move(aside, sent);
}

}  // namespace

MoveToSent::MoveToSent(const CurrentUser& user, const LPath& record)
    : m_note(NotePath(user)),
      m_current(DictationFiles::OfPath(record).InFolder(user.currentFolder)),
      m_sent(m_current.InFolder(user.sentFolder)) {}

MoveToSent::~MoveToSent() {
    if (m_pending) PutBack();
}

bool MoveToSent::Run(std::string_view recipient, int64_t now) {
    m_hasNotes = LFile::Exists(m_current.notes);
    m_before = DictationRecord::Read(m_current.record);
    if (!WriteNote()) {
        LTrace("MoveToSent::Run unable to write note", m_note.View());
        return false;
    }
    m_pending = true;
    if (MoveAll(recipient, now)) return true;
    PutBack();
    return false;
}

// The audio goes last: as long as it is in Current, the dictation is not in Sent.
bool MoveToSent::MoveAll(std::string_view recipient, int64_t now) {
    if (m_hasNotes ? !MoveAway(m_current.notes, m_sent.notes) : !SetAside(m_sent.notes)) return false;
    LProfile::Flush(m_current.record);
    if (!MoveAway(m_current.record, m_sent.record)) return false;
    DictationRecord values;
    values.sendDate = now;
    values.recipient = recipient;
    values.sendStatus = RecordKeys::kStatusSending;
    WriteSendKeys(m_sent.record, values);
    LProfile::Flush(m_sent.record);
    return MoveAway(m_current.audio, m_sent.audio);
}

void MoveToSent::Commit() {
    for (const LPath* sent : {&m_sent.notes, &m_sent.record, &m_sent.audio}) LFile::Delete(AsideOf(*sent));
    LFile::Delete(m_note);
    m_pending = false;
}

// Ends as it began, with the audio: whatever moment the program is killed at, the next run can go on from
// there.
void MoveToSent::PutBack() {
    m_pending = false;
    bool done = TakeBack(m_sent.audio, m_current.audio);
    if (!LFile::Exists(m_current.record) && LFile::Exists(m_sent.record)) {
        WriteSendKeys(m_sent.record, m_before);
        LProfile::Flush(m_sent.record);
        done = TakeBack(m_sent.record, m_current.record) && done;
    }
    if (m_hasNotes) done = TakeBack(m_sent.notes, m_current.notes) && done;
    for (const LPath* sent : {&m_sent.notes, &m_sent.record, &m_sent.audio}) RestoreAside(*sent);
    if (done) LFile::Delete(m_note);
}

bool MoveToSent::WriteNote() const {
    std::string text(LFileNameOf(m_current.record.View()));
    if (text.empty()) return false;
    if (m_hasNotes) text.push_back(kNoteWithNotes);
    return LFile::WriteWhole(m_note, m_note.WithExtension(".mo~"),
                             {reinterpret_cast<const uint8_t*>(text.data()), text.size()});
}

void MoveToSent::TakeUp(const CurrentUser& user, const std::function<bool(const LPath&)>& isQueued) {
    const LPath note = NotePath(user);
    std::vector<uint8_t> bytes;
    if (!LFile::Exists(note)) return;
    LFile::ReadWhole(note, kMaxNoteBytes, bytes);
    std::string_view name(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    const bool hasNotes = name.ends_with(kNoteWithNotes);
    if (hasNotes) name.remove_suffix(1);
    // Only the name of a record may decide what is moved.
    if (!NumberOfFileName(LPath(name)) || LFileNameOf(name) != name) {
        LTrace("MoveToSent::TakeUp unreadable note", note.View());
        LFile::Delete(note);
        return;
    }
    MoveToSent move(user, LPath(name));
    move.m_hasNotes = hasNotes;
    move.m_pending = true;
    if (move.IsComplete(isQueued)) move.Commit();
}

bool MoveToSent::IsComplete(const std::function<bool(const LPath&)>& isQueued) const {
    if (LFile::Exists(m_current.record) || LFile::Exists(m_current.audio)) return false;
    if (!LFile::Exists(m_sent.record) || !LFile::Exists(m_sent.audio)) return false;
    if (isQueued(m_sent.audio)) return true;
    const std::string status = DictationRecord::Read(m_sent.record).sendStatus;
    return status == RecordKeys::kStatusSent || status == RecordKeys::kStatusFailed;
}
