#include <windows.h>

#include <algorithm>

#include "base/LFile.h"
#include "base/LProfile.h"
#include "base/LProfileText.h"
#include "base/LThread.h"
#include "base/LTrace.h"

// An empty path would make the platform use a file of its own.

namespace {

constexpr uint64_t kRoomKb = 16;  // what a change may need beyond the size of the file

struct Change {
    std::string section;
    std::string key;
    const char* value;  // null removes the key
};

bool Apply(const LPath& file, const Change& change) {
    return WritePrivateProfileStringA(change.section.c_str(), change.key.c_str(), change.value, file.c_str());
}

void DropCache(const LPath& file) {
    // Answers false although it does what it should, so the answer is of no use.
    WritePrivateProfileStringA(nullptr, nullptr, nullptr, file.c_str());
}

// Most of what a page of settings stores has not changed, and a change costs a file.
bool IsAsWanted(const LPath& file, const Change& change) {
    constexpr char kAbsent[] = "\x01";  // never written
    char text[LProfile::kMaxText + 1] = {};
    GetPrivateProfileStringA(change.section.c_str(), change.key.c_str(), kAbsent, text, sizeof text,
                             file.c_str());
    return std::string_view(text) == (change.value ? LProfileValue(change.value) : kAbsent);
}

// The platform does not tell when it rewrote a file on a full disk and lost its end.
bool HasRoom(const LPath& file) {
    const int64_t size = LFile(file, LFile::Open::Read).Size();
    return LFile::FreeSpaceKb(LPath(LFolderOf(file.View()))) >= static_cast<uint64_t>(size) / 1024 + kRoomKb;
}

bool MakeCopy(const LPath& file, const LPath& copy) {
    if (copy.Empty()) return false;
    if (LFile::Exists(file)) return CopyFileA(file.c_str(), copy.c_str(), FALSE);
    LFile::Delete(copy);
    return true;
}

bool ChangeCopy(const LPath& copy, const Change& change) {
    const bool changed = Apply(copy, change);
    DropCache(copy);
    if (!changed || !LFile::Exists(copy)) return false;
    // Redirectors of networks need not know how to flush; what they took is as safe as it gets.
    LFile(copy, LFile::Open::Write).Flush();
    return true;
}

// The platform rewrites a file in place, from its first byte: whoever ends the program meanwhile would empty
// it.
bool ChangeFile(const LPath& file, const Change& change) {
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
    if (IsAsWanted(file, change)) return true;
    const LPath copy = LProfile::CopyOf(file);
    const bool changed = MakeCopy(file, copy) && ChangeCopy(copy, change) && LFile::Replace(copy, file);
    if (!changed) {
        // A folder in which nothing may be created, or another program that keeps the file open. Where a file
        // is replaced in two steps it may be gone: then the copy is all there is.
        LProfile::Recover(file);
        if (!Apply(file, change)) return false;
    }
    DropCache(file);
    return true;
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
    const std::string safe = LProfileSafe(value);
    return ChangeFile(file, {std::string(section), std::string(key), safe.c_str()});
}

bool LProfile::Delete(const LPath& file, std::string_view section, std::string_view key) {
    return ChangeFile(file, {std::string(section), std::string(key), nullptr});
}

void LProfile::Flush(const LPath& file) {
    const LLock lock(LProfileLock());
    if (!file.Empty()) DropCache(file);
}
