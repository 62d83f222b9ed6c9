#include "send/SendQueueFile.h"

#include <limits>
#include <string>

#include "base/LFile.h"
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

// A count up to here is believed when its last entry is there. Beyond it, and where the last entry is
// missing, the entries themselves are counted, until so many in a row are missing.
constexpr int32_t kMostBelieved = 1000;
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

// The whole file with the entries from first on. Each moves down, also over those of which nothing is left.
std::string TextFrom(const LPath& path, int32_t first, int32_t count) {
    const LProfileSection section(path, kSection);
    std::string lines;
    int32_t kept = 0;
    for (int32_t i = first; i < count; ++i) {
        const size_t before = lines.size();
        for (const char* prefix : kPrefixes) {
            const std::string key = Settings::ListItemKey(prefix, i);
            std::string value = section.Read(key, "");
            // The oldest platforms yield only the first 32 KB of a section.
            if (value.empty()) value = LProfile::Read(path, kSection, key, "");
            if (!value.empty()) lines += Line(Settings::ListItemKey(prefix, kept), value);
        }
        if (lines.size() > before) ++kept;
    }
    return std::string("[") + kSection + "]\r\n" + Line(kCountKey, LFormat("%ld", static_cast<long>(kept))) +
           lines;
}

bool WriteFlushed(const LPath& path, std::string_view text) {
    LFile file(path, LFile::Open::CreateNew);
    return file.IsOpen() && file.WriteAll({reinterpret_cast<const uint8_t*>(text.data()), text.size()}) &&
           file.Flush();
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

int32_t SendQueueFile::Count() const {
    const int32_t count = Settings::ReadInt(m_path, kSection, kCountKey, 0);
    if (count <= 0) return 0;
    if (count <= kMostBelieved && HasEntry(count - 1)) return count;
    return CountEntries(count);
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
    for (int32_t i = 0, count = Count(); i < count; ++i) {
        const std::string path =
            Settings::ReadText(m_path, kSection, Settings::ListItemKey(kFilePrefix, i), "");
        if (LEqualNoCase(path, dictation.View())) return true;
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

bool SendQueueFile::Append(const SendQueueEntry& entry) {
    int32_t index = Count();
    if (index >= kMostBelieved && CountEntries(index) < index) {
        // One more would no longer be believed; without the gaps it will be found.
        if (!KeepFrom(0, index)) return false;
        index = Count();
    }
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
    const int32_t count = Count();
    return count == 0 || KeepFrom(1, count);
}

bool SendQueueFile::KeepFrom(int32_t first, int32_t count) {
    const std::string text = TextFrom(m_path, first, count);
    // What the platform has not written yet, or remembers, must not come back over the new file.
    LProfile::Flush(m_path);
    if (WriteFlushed(m_unfinished, text) && LFile::Replace(m_unfinished, m_path)) return true;
    LTrace("SendQueueFile::KeepFrom unable to replace file", m_path.View());
    if (LFile::Exists(m_path)) LFile::Delete(m_unfinished);
    return false;
}

bool SendQueueFile::SetCount(int32_t count) {
    Settings::WriteInt(m_path, kSection, kCountKey, count);
    if (Settings::ReadInt(m_path, kSection, kCountKey, -1) == count) return true;
    LTrace("SendQueueFile::SetCount file is read only or corrupt", m_path.View());
    return false;
}
