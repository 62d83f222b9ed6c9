#include "send/SendQueueFile.h"

#include <limits>
#include <string>

#include "base/LProfile.h"
#include "base/LText.h"
#include "base/LTrace.h"
#include "store/Settings.h"

namespace {

constexpr char kSection[] = "bgsend";
constexpr char kCountKey[] = "count";
constexpr char kFilePrefix[] = "file";
constexpr char kRecipientPrefix[] = "sendto";
constexpr char kUserPrefix[] = "id";
constexpr const char* kPrefixes[] = {kFilePrefix, kRecipientPrefix, kUserPrefix};

// The shortest line that an entry can have, "id0=0" and its end: a count of more entries than the file has
// room for is none.
constexpr int64_t kLeastEntryBytes = 6;
// Entries are counted one by one until so many in a row are missing.
constexpr int32_t kLargestGap = 16;

std::string Line(std::string_view key, std::string_view value) {
    return std::string(key) + "=" + std::string(value) + "\r\n";
}

bool ParseUser(std::string_view text, uint32_t& user) {
    const int64_t number = LParseInt64(text);
    if (text.empty() || !LIsDigit(text[0]) || number > std::numeric_limits<uint32_t>::max()) return false;
    user = static_cast<uint32_t>(number);
    return true;
}

// The keys of many entries, read with one call.
class EntryKeys {
public:
    explicit EntryKeys(const LPath& path) : m_path(path), m_section(path, kSection) {}
    std::string Read(const char* prefix, int32_t index) const {
        const std::string key = Settings::ListItemKey(prefix, index);
        const std::string value = m_section.Read(key, "");
        // The oldest platforms yield only the first 32 KB of a section.
        return value.empty() ? LProfile::Read(m_path, kSection, key, "") : value;
    }

private:
    const LPath& m_path;
    LProfileSection m_section;
};

// The whole file without the head. Each entry moves down, also over those of which nothing is left.
std::string TextWithoutHead(const LPath& path, int32_t count) {
    const EntryKeys keys(path);
    std::string lines;
    int32_t kept = 0;
    for (int32_t i = 1; i < count; ++i) {
        const size_t before = lines.size();
        for (const char* prefix : kPrefixes) {
            const std::string value = keys.Read(prefix, i);
            if (!value.empty()) lines += Line(Settings::ListItemKey(prefix, kept), value);
        }
        if (lines.size() > before) ++kept;
    }
    return std::string("[") + kSection + "]\r\n" + Line(kCountKey, LFormat("%ld", static_cast<long>(kept))) +
           lines;
}

}  // namespace

void SendQueueFile::SetPath(const LPath& path) {
    m_path = path;
    m_unfinished = path.WithExtension(".new");
    // Some platforms replace a file in two steps, and only a finished one ever replaces: without the file
    // itself, what stands beside it is the queue.
    if (LFile::Exists(m_path)) {
        LFile::Delete(m_unfinished);
    } else if (LFile::Exists(m_unfinished)) {
        LFile::Move(m_unfinished, m_path);
    }
}

// While the file is held nobody can shut it off between one key and the next. What is to be changed must be
// let go of first.
bool SendQueueFile::Hold(LFile& file) const {
    file = LFile(m_path, LFile::Open::Read);
    if (file.IsOpen() || !LFile::Exists(m_path)) return true;
    LTrace("SendQueueFile::Hold unable to open file", m_path.View());
    return false;
}

int32_t SendQueueFile::Count() const {
    const int32_t count = Settings::ReadInt(m_path, kSection, kCountKey, 0);
    if (count <= 0) return 0;
    const int64_t most = LFile(m_path, LFile::Open::Read).Size() / kLeastEntryBytes;
    return count <= most && HasEntry(count - 1) ? count : CountEntries(count);
}

int32_t SendQueueFile::CountEntries(int32_t limit) const {
    int32_t count = 0;
    for (int32_t i = 0; i < limit && i - count < kLargestGap; ++i) {
        if (HasEntry(i)) count = i + 1;
    }
    LTrace("SendQueueFile::CountEntries count does not fit the entries");
    return count;
}

bool SendQueueFile::HasEntry(int32_t index) const {
    for (const char* prefix : kPrefixes) {
        if (!Settings::ReadText(m_path, kSection, Settings::ListItemKey(prefix, index), "").empty())
            return true;
    }
    return false;
}

bool SendQueueFile::Holds(const LPath& dictation) const {
    LFile held;
    if (!Hold(held)) return true;
    const EntryKeys keys(m_path);
    for (int32_t i = 0, count = Count(); i < count; ++i) {
        if (LEqualNoCase(keys.Read(kFilePrefix, i), dictation.View())) return true;
    }
    return false;
}

SendQueueEntry SendQueueFile::Head() const {
    const auto read = [this](const char* prefix) {
        return Settings::ReadText(m_path, kSection, Settings::ListItemKey(prefix, 0), "");
    };
    SendQueueEntry entry;
    entry.dictation.Set(read(kFilePrefix));
    entry.recipient.Set(read(kRecipientPrefix));
    const bool hasUser = ParseUser(read(kUserPrefix), entry.user);
    entry.isWhole = hasUser && !entry.dictation.Empty() && !entry.recipient.Empty();
    return entry;
}

bool SendQueueFile::ReadHead(SendQueueEntry& head, int32_t& count) const {
    LFile held;
    if (!Hold(held)) return false;
    head = Head();
    count = Count();
    return true;
}

bool SendQueueFile::Append(const SendQueueEntry& entry) {
    SendQueueEntry head;
    int32_t index = 0;
    if (!ReadHead(head, index)) return false;
    const auto write = [this, index](const char* prefix, std::string_view value) {
        return LProfile::Write(m_path, kSection, Settings::ListItemKey(prefix, index), value);
    };
    const bool written = write(kFilePrefix, entry.dictation.View()) &&
                         write(kRecipientPrefix, entry.recipient.View()) &&
                         write(kUserPrefix, LFormat("%lu", static_cast<unsigned long>(entry.user)));
    if (!written) {
        LTrace("SendQueueFile::Append unable to write entry", m_path.View());
        return false;
    }
    return SetCount(index + 1);
}

bool SendQueueFile::RemoveHead() {
    LFile held;
    if (!Hold(held)) return false;
    const int32_t count = Count();
    if (count == 0) return true;
    const std::string text = TextWithoutHead(m_path, count);
    held.Close();
    // What the platform has not written yet, or remembers, must not come back over the new file.
    LProfile::Flush(m_path);
    if (LFile::WriteWhole(m_path, m_unfinished, {reinterpret_cast<const uint8_t*>(text.data()), text.size()}))
        return true;
    LTrace("SendQueueFile::RemoveHead unable to replace file", m_path.View());
    return false;
}

bool SendQueueFile::SetCount(int32_t count) {
    Settings::WriteInt(m_path, kSection, kCountKey, count);
    if (Settings::ReadInt(m_path, kSection, kCountKey, -1) == count) return true;
    LTrace("SendQueueFile::SetCount file is read only or corrupt", m_path.View());
    return false;
}
