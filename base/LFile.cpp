#include "base/LFile.h"

#include "base/LTime.h"

// The portable part of LFile: patience with files that others hold, and whole files at once.

constexpr uint32_t kPollMs = 20;
constexpr uint32_t kReplaceWaitMs = 100;  // a reader of a settings file is done by then

// Repeats an attempt while another program holds the file, until waitMs have passed.
template <class Try>
bool LFile::Persist(uint32_t waitMs, Try attempt) {
    const uint32_t begun = LTickMs();
    for (;;) {
        const Attempt result = attempt();
        if (result != Attempt::Held) return result == Attempt::Done;
        if (LTickMs() - begun >= waitMs) return false;
        LSleep(kPollMs);
    }
}

bool LFile::Delete(const LPath& path, uint32_t waitMs) {
    return !path.Empty() && Persist(waitMs, [&] { return TryDelete(path); });
}

bool LFile::Move(const LPath& from, const LPath& to, uint32_t waitMs) {
    return !from.Empty() && !to.Empty() && Persist(waitMs, [&] { return TryMove(from, to); });
}

bool LFile::Replace(const LPath& finished, const LPath& target) {
    if (target.Empty() || !Exists(finished)) return false;
    return Persist(kReplaceWaitMs, [&] { return TryReplace(finished, target); });
}

// Repeats a read until it succeeds or waitMs have passed. An absent file is not waited for.
template <class Try>
static LReadResult ReadPatiently(const LPath& path, uint32_t waitMs, Try isRead) {
    const uint32_t begun = LTickMs();
    for (;;) {
        if (isRead()) return LReadResult::Values;
        if (LFile::IsAbsent(path)) return LReadResult::Absent;
        if (LTickMs() - begun >= waitMs) return LReadResult::Unreadable;
        LSleep(kPollMs);
    }
}

LReadResult LFile::OpenToRead(const LPath& path, LFile& file, uint32_t waitMs) {
    return ReadPatiently(path, waitMs, [&] {
        file = LFile(path, Open::Read);
        return file.IsOpen();
    });
}

LReadResult LFile::TryRead(const LPath& path, size_t maxBytes, std::vector<uint8_t>& bytes, uint32_t waitMs) {
    return ReadPatiently(path, waitMs, [&] { return ReadWhole(path, maxBytes, bytes); });
}

bool LFile::ReadWhole(const LPath& path, size_t maxBytes, std::vector<uint8_t>& bytes) {
    LFile file(path, Open::Read);
    const int64_t size = file.Size();
    if (!file.IsOpen() || size < 0 || static_cast<uint64_t>(size) > maxBytes) return false;
    std::vector<uint8_t> read(static_cast<size_t>(size));
    if (!file.ReadExact(read)) return false;
    bytes.swap(read);
    return true;
}

bool LFile::SettleBeside(const LPath& finished, const LPath& target) {
    if (!IsAbsent(target)) {
        Delete(finished, kMoveWaitMs);
        return false;
    }
    return !IsAbsent(finished) && Move(finished, target, kMoveWaitMs);
}

bool LFile::WriteWhole(const LPath& target, const LPath& beside, std::span<const uint8_t> bytes) {
    if (target.Empty() || beside.Empty()) return false;
    const bool existed = !IsAbsent(target) && !IsFolder(target);
    LFile file(beside, Open::CreateNew);
    if (!file.IsOpen()) return false;
    const bool written = file.WriteAll(bytes) && file.Flush();
    file.Close();
    if (written && Replace(beside, target)) return true;
    // Where a file cannot be replaced in one step, the target may be deleted already: then the file beside it
    // holds the only copy, and stays.
    const bool isLast = written && existed && !Exists(target);
    if (!isLast) Delete(beside);
    return false;
}
