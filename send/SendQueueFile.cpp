#include "send/SendQueueFile.h"

#include <algorithm>
#include <array>
#include <limits>
#include <map>
#include <span>
#include <string>
#include <vector>

#include "base/LFile.h"
#include "base/LLeftOver.h"
#include "base/LProfileText.h"
#include "base/LText.h"
#include "base/LTrace.h"
#include "store/Settings.h"

// Every operation enters by the lock file, reads the whole file with a parser of its own, and writes it as a
// whole beside itself before the swap. The platform's profile functions were rejected: they change one key at
// a time, and moving entries down key by key would, cut off half-way, pair one dictation with the recipient
// of another. They also answer a held file with defaults, as if the queue were empty.
// A change does not depend on being read back: the earlier way took a failed read for a failed write, and
// delivered twice. Append instead recognises its own entry at the end of the queue and does not add it again.
// The parser keeps entries as texts, so an invalid one survives a change of others and is reported when it
// becomes the head.

namespace {

constexpr char kSection[] = "bgsend";
constexpr char kCountKey[] = "count";
enum { kFile, kRecipient, kUser };
constexpr const char* kPrefixes[] = {"file", "sendto", "id"};
constexpr size_t kMostIndexDigits = 9;

constexpr size_t kMostBytes = size_t{8} << 20;  // about fifty thousand entries

using Values = std::array<std::string, std::size(kPrefixes)>;  // of one entry, as texts of the file

std::string Line(std::string_view key, std::string_view value) {
    return std::string(key) + "=" + LProfileSafe(value) + "\r\n";
}

bool ParseUser(std::string_view text, uint32_t& user) {
    const int64_t number = LParseInt64(text);
    if (text.empty() || !LIsDigit(text[0]) || number > std::numeric_limits<uint32_t>::max()) return false;
    user = static_cast<uint32_t>(number);
    return true;
}

SendQueueEntry ToEntry(const Values& values) {
    SendQueueEntry entry;
    entry.dictation.Set(values[kFile]);
    entry.recipient.Set(values[kRecipient]);
    const bool hasUser = ParseUser(values[kUser], entry.user);
    entry.isWhole = hasUser && !entry.dictation.Empty() && !entry.recipient.Empty();
    return entry;
}

// Ends a value before its first control byte: a line with such bytes could not be written again.
std::string_view BeforeControl(std::string_view value) {
    const auto isControl = [](char c) { return static_cast<unsigned char>(c) < ' ' && c != '\t'; };
    return value.substr(0, static_cast<size_t>(std::ranges::find_if(value, isControl) - value.begin()));
}

// Splits the first line off a text.
std::string_view TakeLine(std::string_view& text) {
    const size_t length = std::min(text.find_first_of("\r\n"), text.size());
    const std::string_view line = text.substr(0, length);
    text.remove_prefix(std::min(length + 1, text.size()));
    return LTrimBlanks(line);
}

// Collects every entry of which at least one key is present, by its index. Of two equal keys the first
// counts.
class Parser {
public:
    void Parse(std::string_view text) {
        bool isInside = false;
        while (!text.empty()) {
            const std::string_view line = TakeLine(text);
            const size_t equals = line.find('=');
            if (line.starts_with('[')) {
                isInside = LEqualNoCase(line.substr(1, line.find(']') - 1), kSection);
            } else if (isInside && equals != std::string_view::npos) {
                TakeKey(LTrimBlanks(line.substr(0, equals)),
                        LProfileValue(BeforeControl(line.substr(equals + 1))));
            }
        }
    }
    // The entries below the file's count. Gaps between them are skipped.
    std::vector<Values> Counted() const {
        std::vector<Values> counted;
        for (const auto& [index, values] : m_entries) {
            if (index < LParseInt64(m_count)) counted.push_back(values);
        }
        return counted;
    }

private:
    void TakeKey(std::string_view key, std::string_view value) {
        if (LEqualNoCase(key, kCountKey) && m_count.empty()) m_count = value;
        for (size_t i = 0; i < std::size(kPrefixes); ++i) {
            const std::string_view prefix = kPrefixes[i];
            const std::string_view digits = key.substr(std::min(prefix.size(), key.size()));
            const bool isIndex =
                !digits.empty() && digits.size() <= kMostIndexDigits && std::ranges::all_of(digits, LIsDigit);
            if (value.empty() || !isIndex || !LEqualNoCase(key.substr(0, prefix.size()), prefix)) continue;
            std::string& there = m_entries[LParseInt(digits)][i];
            if (there.empty()) there = value;
        }
    }

    std::string m_count;
    std::map<int32_t, Values> m_entries;
};

}  // namespace

struct SendQueueFile::Contents {
    std::vector<Values> entries;
    bool isCleared = false;  // the count is to be written as 0

    std::vector<SendQueueEntry> All() const;
    int32_t Count() const { return static_cast<int32_t>(entries.size()); }
    SendQueueEntry Head() const { return entries.empty() ? SendQueueEntry() : ToEntry(entries[0]); }
};

void SendQueueFile::SetPath(const LPath& path) {
    m_path = path;
    m_unfinished = path.WithExtension(LLeftOver::kQueue);
    m_lock = path.WithExtension(LLeftOver::kLock);
}

// Takes the lock and reads the file. Where no lock file can be created, as in a read-only folder, nobody can
// change the queue, so reading goes on without one.
bool SendQueueFile::Enter(Purpose purpose, LFileLock& turn, Contents& contents, uint32_t waitMs) const {
    const LFileLock::Result taken = turn.Take(m_lock, waitMs);
    const bool isMine = taken == LFileLock::Result::Taken;
    if (!isMine && (taken == LFileLock::Result::Held || purpose == Purpose::Change)) {
        LTrace("SendQueueFile::Enter unable to lock file", m_lock.View());
        return false;
    }
    if (isMine) FinishReplacement();
    std::vector<uint8_t> bytes;
    if (LFile::TryRead(m_path, kMostBytes, bytes, 0) == LReadResult::Unreadable) {
        LTrace("SendQueueFile::Enter unable to read file", m_path.View());
        return false;
    }
    Parser parser;
    parser.Parse({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    contents.entries = parser.Counted();
    return true;
}

// Finishes a replacement that was cut off. Some platforms replace in two steps, and only a complete file ever
// replaces: when the queue file is absent, the file beside it is the queue. The holder of the lock can find
// only the left-over of a program that has ended.
bool SendQueueFile::FinishReplacement() const {
    if (LFile::IsAbsent(m_path)) return LFile::Move(m_unfinished, m_path);
    if (LFile::Exists(m_path)) LFile::Delete(m_unfinished);
    return false;
}

bool SendQueueFile::Write(const Contents& contents) const {
    const int32_t count = contents.isCleared ? 0 : contents.Count();
    std::string text = std::string("[") + kSection + "]\r\n" + Line(kCountKey, std::to_string(count));
    int32_t index = 0;
    for (const Values& values : contents.entries) {
        for (size_t i = 0; i < values.size(); ++i) {
            if (!values[i].empty()) text += Line(Settings::ListItemKey(kPrefixes[i], index), values[i]);
        }
        ++index;
    }
    const std::span bytes(reinterpret_cast<const uint8_t*>(text.data()), text.size());
    const bool isWritten = bytes.size() <= kMostBytes && LFile::WriteWhole(m_path, m_unfinished, bytes);
    if (isWritten || FinishReplacement()) return true;
    LTrace("SendQueueFile::Write unable to replace file", m_path.View());
    return false;
}

std::vector<SendQueueEntry> SendQueueFile::Contents::All() const {
    std::vector<SendQueueEntry> all;
    for (const Values& values : entries) all.push_back(ToEntry(values));
    return all;
}

bool SendQueueFile::ReadAll(std::vector<SendQueueEntry>& entries) const {
    LFileLock turn;
    Contents contents;
    if (!Enter(Purpose::Read, turn, contents, 0)) return false;
    entries = contents.All();
    return true;
}

bool SendQueueFile::ReadAll(std::vector<SendQueueEntry>& entries, LFileLock& turn) const {
    Contents contents;
    if (!Enter(Purpose::Change, turn, contents)) return false;
    entries = contents.All();
    return true;
}

QueueAnswer SendQueueFile::Contains(const LPath& dictation) const {
    LFileLock turn;
    Contents contents;
    if (!Enter(Purpose::Read, turn, contents)) return QueueAnswer::Unknown;
    const bool isQueued = std::ranges::any_of(contents.entries, [&](const Values& values) {
        return LEqualNoCase(values[kFile], dictation.View());
    });
    return isQueued ? QueueAnswer::Yes : QueueAnswer::No;
}

bool SendQueueFile::ReadHead(SendQueueEntry& head, int32_t& count) const {
    LFileLock turn;
    Contents contents;
    if (!Enter(Purpose::Read, turn, contents)) return false;
    head = contents.Head();
    count = contents.Count();
    return true;
}

bool SendQueueFile::Append(const SendQueueEntry& entry, int32_t& count, const std::function<bool()>& mayAdd) {
    LFileLock turn;
    Contents contents;
    if (!Enter(Purpose::Change, turn, contents)) return false;
    if (mayAdd && !mayAdd()) return false;
    // An earlier attempt may have succeeded although it reported failure.
    if (contents.entries.empty() || !(ToEntry(contents.entries.back()) == entry)) {
        contents.entries.push_back({std::string(entry.dictation.View()), std::string(entry.recipient.View()),
                                    std::to_string(entry.user)});
        if (!Write(contents)) return false;
    }
    count = contents.Count();
    return true;
}

bool SendQueueFile::MoveHeadToEnd(const SendQueueEntry& head, int32_t& count) {
    LFileLock turn;
    Contents contents;
    if (!Enter(Purpose::Change, turn, contents)) return false;
    if (contents.Count() > 1 && contents.Head() == head) {
        std::rotate(contents.entries.begin(), contents.entries.begin() + 1, contents.entries.end());
        if (!Write(contents)) return false;
    }
    count = contents.Count();
    return true;
}

bool SendQueueFile::RemoveHead(const SendQueueEntry& head, int32_t& count) {
    LFileLock turn;
    Contents contents;
    if (!Enter(Purpose::Change, turn, contents)) return false;
    if (!contents.entries.empty() && contents.Head() == head) {
        contents.entries.erase(contents.entries.begin());
        if (!Write(contents)) return false;
    }
    count = contents.Count();
    return true;
}

bool SendQueueFile::Remove(const LPath& dictation, int32_t& count) {
    LFileLock turn;
    Contents contents;
    if (!Enter(Purpose::Change, turn, contents)) return false;
    const auto removed = std::erase_if(contents.entries, [&](const Values& values) {
        return LEqualNoCase(values[kFile], dictation.View());
    });
    if (removed > 0 && !Write(contents)) return false;
    count = contents.Count();
    return true;
}

bool SendQueueFile::SetRecipients(const std::vector<SendQueueEntry>& changed) {
    if (changed.empty()) return true;
    LFileLock turn;
    Contents contents;
    if (!Enter(Purpose::Change, turn, contents)) return false;
    for (Values& values : contents.entries) {
        const auto now = std::ranges::find_if(changed, [&](const SendQueueEntry& entry) {
            return LEqualNoCase(values[kFile], entry.dictation.View());
        });
        if (now != changed.end()) values[kRecipient] = now->recipient.View();
    }
    return Write(contents);
}

bool SendQueueFile::Clear() {
    LFileLock turn;
    Contents contents;
    if (!Enter(Purpose::Change, turn, contents)) return false;
    contents.isCleared = true;
    return Write(contents);
}
