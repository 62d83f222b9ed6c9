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

// Every step can be done twice. The journal lists the record files that were there at the beginning: one of
// them that is absent has been moved already, and one that was missing from the start leaves its gap behind.
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
    if (!Finish() || index < 0 || index >= RecipientCount(m_userFile)) return false;
    if (!WriteJournal(index)) {
        LTrace("RecipientDeletion::Begin unable to write journal", m_journal.View());
        return false;
    }
    return Finish();
}

bool RecipientDeletion::WriteJournal(int32_t index) const {
    std::vector<SendQueueEntry> entries;
    if (!m_queue.ReadAll(entries)) return false;
    const int32_t count = RecipientCount(m_userFile);
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
    for (int32_t i = index + 1; i < count && isDone; ++i) {
        const LPath from = Record(i), to = Record(i - 1);
        const bool wasThere = !journal.Read(Settings::ListItemKey(kIsThere, i), "").empty();
        if (wasThere)
            isDone = LFile::IsAbsent(from) || LFile::Replace(from, to);
        else
            isDone = LFile::IsAbsent(to) || LFile::Delete(to, kMoveWaitMs);
    }
    std::vector<SendQueueEntry> changed;
    for (int32_t i = 0; i < LParseInt(journal.Read(kEntries, "0")); ++i)
        changed.push_back({LPath(journal.Read(Settings::ListItemKey(kDictation, i), "")),
                           LPath(journal.Read(Settings::ListItemKey(kRecipient, i), "")), m_user, true});
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
