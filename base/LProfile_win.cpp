#include <windows.h>

#include <algorithm>
#include <optional>
#include <vector>

#include "base/LFile.h"
#include "base/LProfile.h"
#include "base/LProfileText.h"
#include "base/LThread.h"
#include "base/LTime.h"
#include "base/LTrace.h"

// Settings through the platform's private profiles. The platform rewrites a file in place, from its first
// byte, and a kill in the middle left an empty user file; so a change is made in a copy ("user.dat~"),
// flushed, and swapped in. The copy is created only where there is none, and so serves as a lock between the
// programs of several sessions; one that stays for half a second was left by a program that ended.
// Where no copy can be made or swapped in (a folder in which no file may be created, a reader that keeps the
// file open), the change is made in place after all. An unchanged value costs no write. Nothing is cached, so
// two programs see the same values; the platform's own cache is emptied before and after each change.
// No path may be empty here: the platform would use a file of its own.

namespace {

constexpr uint64_t kRoomKb = 16;  // room for a change, beyond the size of the file

struct Change {
    std::string section;
    std::string key;
    std::optional<std::string> value;  // none removes the key
    const char* Text() const { return value ? value->c_str() : nullptr; }
};
using Changes = std::span<const Change>;

bool Apply(const LPath& file, Changes changes) {
    return std::ranges::all_of(changes, [&](const Change& change) {
        return WritePrivateProfileStringA(change.section.c_str(), change.key.c_str(), change.Text(),
                                          file.c_str());
    });
}

void DropCache(const LPath& file) {
    // Returns false even when it succeeds, so the result is not tested.
    WritePrivateProfileStringA(nullptr, nullptr, nullptr, file.c_str());
}

// Whether the file has the value already. Most values that a settings page stores are unchanged, and a change
// costs a file.
bool IsAsWanted(const LPath& file, const Change& change) {
    constexpr char kAbsent[] = "\x01";  // a value that is never written
    char text[LProfile::kMaxText + 1] = {};
    GetPrivateProfileStringA(change.section.c_str(), change.key.c_str(), kAbsent, text, sizeof text,
                             file.c_str());
    return std::string_view(text) == (change.value ? LProfileValue(*change.value) : kAbsent);
}

// Whether the disk has room for the change: the platform does not report that it rewrote a file on a full
// disk and lost its end.
bool HasRoom(const LPath& file) {
    const int64_t size = LFile(file, LFile::Open::Read).Size();
    return LFile::FreeSpaceKb(LPath(LFolderOf(file.View()))) >= static_cast<uint64_t>(size) / 1024 + kRoomKb;
}

constexpr uint32_t kTurnMs = 500;  // more than any change takes
constexpr uint32_t kTurnRetryMs = 5;
constexpr int kMostRefusals = 5;

// Creates the copy, waiting for the turn of another program; a copy that stays was left by a program that
// ended.
bool OpenCopy(const LPath& copy, LFile& made) {
    const uint32_t begun = LTickMs();
    for (int refusals = 0;; LSleep(kTurnRetryMs)) {
        made = LFile(copy, LFile::Open::CreateAbsent);
        if (made.IsOpen()) return true;
        const uint32_t waitedMs = LTickMs() - begun;
        if (!LFile::Exists(copy) && ++refusals > kMostRefusals) return false;  // nothing can be created here
        if (waitedMs >= kTurnMs) LFile::Delete(copy);
        if (waitedMs >= 2 * kTurnMs) return false;
    }
}

bool MakeCopy(const LPath& file, const LPath& copy) {
    LFile made;
    if (copy.Empty() || !OpenCopy(copy, made)) return false;
    std::vector<uint8_t> bytes;
    const bool isRead = LFile::TryRead(file, kLongestProfile, bytes, 0) != LReadResult::Unreadable;
    const bool isMade = isRead && made.WriteAll(bytes);
    made.Close();
    if (!isMade) LFile::Delete(copy);
    return isMade;
}

bool ChangeCopy(const LPath& copy, Changes changes) {
    const bool changed = Apply(copy, changes);
    DropCache(copy);
    if (!changed || !LFile::Exists(copy)) return false;
    // Network redirectors need not support flushing; that is no reason to fail.
    LFile(copy, LFile::Open::Write).Flush();
    return true;
}

// Makes the changes in the copy and swaps that in; where this is not possible, in the file itself.
bool ChangeFile(const LPath& file, Changes changes) {
    if (file.Empty()) return false;
    if (LFile held; LFile::OpenToRead(file, held) == LReadResult::Unreadable) {
        LTrace("LProfile::Write unable to read file", file.View());
        return false;
    }
    const LLock lock(LProfileLock());
    if (LFile::IsReadOnly(file) || !HasRoom(file)) {
        LTrace("LProfile::Write file is read-only or the disk is full", file.View());
        return false;
    }
    DropCache(file);
    if (std::ranges::all_of(changes, [&](const Change& change) { return IsAsWanted(file, change); }))
        return true;
    const LPath copy = LProfile::CopyOf(file);
    const bool isMade = MakeCopy(file, copy);
    if (!isMade && LFile::Exists(copy)) return false;  // another program is changing the file
    bool changed = isMade && ChangeCopy(copy, changes) && LFile::Replace(copy, file);
    if (!changed) {
        // The folder lets no file be created, or another program keeps the file open. Where a file is
        // replaced in two steps it may be gone by now: then the copy holds the only values.
        if (isMade && LFile::IsAbsent(file)) LFile::Move(copy, file);
        changed = Apply(file, changes);
        if (isMade) LFile::Delete(copy);
    }
    DropCache(file);
    return changed;
}

}  // namespace

std::string LProfile::Read(const LPath& file, std::string_view section, std::string_view key,
                           std::string_view defaultText) {
    std::string fallback(defaultText.substr(0, kMaxText));
    if (file.Empty()) return fallback;
    const LLock lock(LProfileLock());
    char text[kMaxText + 1] = {};
    const DWORD length = GetPrivateProfileStringA(std::string(section).c_str(), std::string(key).c_str(),
                                                  fallback.c_str(), text, sizeof text, file.c_str());
    return std::string(text, length);
}

bool LProfile::Write(const LPath& file, std::string_view section, std::string_view key,
                     std::string_view value) {
    const Change change{std::string(section), std::string(key), LProfileSafe(value)};
    return ChangeFile(file, {&change, 1});
}

bool LProfile::WriteValues(const LPath& file, std::string_view section, std::span<const Value> values) {
    std::vector<Change> changes;
    for (const Value& value : values)
        changes.push_back({std::string(section), std::string(value.key), LProfileSafe(value.value)});
    return ChangeFile(file, changes);
}

bool LProfile::Delete(const LPath& file, std::string_view section, std::string_view key) {
    const Change change{std::string(section), std::string(key), std::nullopt};
    return ChangeFile(file, {&change, 1});
}

void LProfile::Flush(const LPath& file) {
    const LLock lock(LProfileLock());
    if (!file.Empty()) DropCache(file);
}
