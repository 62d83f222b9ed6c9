#include "send/RecipientDeletion.h"

#include <algorithm>
#include <string>
#include <vector>

#include "base/LLeftOver.h"
#include "base/LProfile.h"
#include "base/LProfileText.h"
#include "base/LText.h"
#include "base/LTrace.h"
#include "store/Settings.h"
#include "store/SettingsKeys.h"

// Every step can be done twice. The journal lists the record files that were there at the beginning: the
// last of them that is absent has been moved already, as have those before it, and one that was missing from
// the start leaves its gap behind.
// It also holds the new recipient of each entry by the path of its dictation, since "one lower" would be done
// twice. Without a journal the gap alone would tell how far the moves had come, but not whether the queue had
// followed.

namespace {

constexpr char kSection[] = "deletion";
constexpr char kIndex[] = "index", kCount[] = "count", kEntries[] = "entries";
constexpr const char *kIsThere = "recipient", *kDictation = "file", *kRecipient = "sendto";
constexpr int32_t kNobody = 999999;  // never the index of a recipient

std::string Line(std::string_view key, std::string_view value) {
    return std::string(key) + "=" + std::string(value) + "\r\n";
}

// "rec7.dat": 7.
int32_t IndexOf(const LPath& recipient) {
    const std::string_view name = LSplitPath(recipient.View()).name;
    return LParseInt(name.substr(std::min<size_t>(3, name.size())));
}

}  // namespace

RecipientDeletion::RecipientDeletion(const DataFolder& data, uint32_t user, SendQueueFile& queue)
    : m_dataFolder(data.folder),
      m_user(user),
      m_queue(queue),
      m_userFile(UserFilePath(data.folder, user)),
      m_journal(LPath::Join(UserFolderPath(data.folder, user).View(), LLeftOver::kDeletion)) {}

bool RecipientDeletion::Begin(int32_t index) {
    const int32_t count = RecipientCount(m_userFile);
    if (IsPending() || index < 0 || index >= count) return false;
    if (IsProtected(index, count) || !WriteJournal(index, count)) {
        LTrace("RecipientDeletion::Begin unable to write journal", m_journal.View());
        return false;
    }
    return Finish();
}

bool RecipientDeletion::IsProtected(int32_t index, int32_t count) const {
    for (int32_t i = index; i < count; ++i)
        if (LFile::IsReadOnly(Record(i))) return true;
    return LFile::IsReadOnly(m_userFile);
}

bool RecipientDeletion::WriteJournal(int32_t index, int32_t count) const {
    std::vector<SendQueueEntry> entries;
    LFileLock turn;  // nothing is added for the old numbers until the journal says so
    if (!m_queue.ReadAll(entries, turn)) return false;
    std::string text = std::string("[") + kSection + "]\r\n" + Line(kIndex, std::to_string(index)) +
                       Line(kCount, std::to_string(count));
    for (int32_t i = index + 1; i < count; ++i)
        if (!LFile::IsAbsent(Record(i))) text += Line(Settings::ListItemKey(kIsThere, i), "true");
    int32_t changed = 0;
    for (const SendQueueEntry& entry : entries) {
        const int32_t recipient = IndexOf(entry.recipient);
        const bool isUsers = LEqualNoCase(entry.recipient.View(), Record(recipient).View());
        if (!isUsers || recipient < index) continue;
        const LPath now = Record(recipient == index ? kNobody : recipient - 1);
        text += Line(Settings::ListItemKey(kDictation, changed), entry.dictation.View());
        text += Line(Settings::ListItemKey(kRecipient, changed++), now.View());
    }
    text += Line(kEntries, std::to_string(changed));
    if (text.size() > kLongestProfile) return false;
    return LFile::WriteWhole(m_journal, m_journal.WithExtension(LLeftOver::kJournal),
                             {reinterpret_cast<const uint8_t*>(text.data()), text.size()});
}

bool RecipientDeletion::Finish() {
    if (!IsPending()) return true;
    const LProfileSection journal(m_journal, kSection);
    if (journal.Result() != LReadResult::Values) return false;
    const int32_t index = LParseInt(journal.Read(kIndex, "-1"));
    const int32_t count = std::min(LParseInt(journal.Read(kCount, "0")), kMostRecipients);
    if (index < 0 || index >= count)
        return LFile::Delete(m_journal, kMoveWaitMs);  // damaged: nothing was done
    const bool isLast = index == count - 1;
    bool isDone = !isLast || LFile::Delete(Record(index), kMoveWaitMs) || LFile::IsAbsent(Record(index));
    const auto wasThere = [&](int32_t i) {
        return !journal.Read(Settings::ListItemKey(kIsThere, i), "").empty();
    };
    // Goes on behind the last one that has been moved; its place is the gap that the moves carry upwards.
    int32_t next = index + 1;
    for (int32_t i = next; i < count; ++i)
        if (wasThere(i) && LFile::IsAbsent(Record(i))) next = i + 1;
    for (int32_t i = next; i < count && isDone; ++i) {
        const LPath from = Record(i), to = Record(i - 1);
        if (wasThere(i))
            isDone = LFile::Replace(from, to);
        else
            isDone = LFile::IsAbsent(to) || LFile::Delete(to, kMoveWaitMs);
    }
    std::vector<SendQueueEntry> changed;
    const int32_t entries = LParseInt(journal.Read(kEntries, "0"));
    for (int32_t i = 0; i < entries; ++i) {
        const LPath dictation(journal.Read(Settings::ListItemKey(kDictation, i), ""));
        if (dictation.Empty()) break;
        changed.push_back(
            {dictation, LPath(journal.Read(Settings::ListItemKey(kRecipient, i), "")), m_user, true});
    }
    isDone = isDone && m_queue.SetRecipients(changed);
    if (isDone) Settings::Write(m_userFile, UserKeys::kSendCount, count - 1);
    isDone = isDone && RecipientCount(m_userFile) == count - 1 && LFile::Delete(m_journal, kMoveWaitMs);
    if (!isDone) LTrace("RecipientDeletion::Finish unable to finish", m_journal.View());
    return isDone;
}

std::optional<int32_t> WaitingFor(const LPath& recipient, const SendQueueFile& queue) {
    std::vector<SendQueueEntry> entries;
    if (!queue.ReadAll(entries)) return std::nullopt;
    return static_cast<int32_t>(std::ranges::count_if(entries, [&](const SendQueueEntry& entry) {
        return LEqualNoCase(entry.recipient.View(), recipient.View());
    }));
}
