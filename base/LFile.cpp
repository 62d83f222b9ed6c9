#include "base/LFile.h"

// What is the same on every platform.

bool LFile::ReadWhole(const LPath& path, size_t maxBytes, std::vector<uint8_t>& bytes) {
    LFile file(path, Open::Read);
    const int64_t size = file.Size();
    if (!file.IsOpen() || size < 0 || static_cast<uint64_t>(size) > maxBytes) return false;
    std::vector<uint8_t> read(static_cast<size_t>(size));
    if (!file.ReadExact(read)) return false;
    bytes.swap(read);
    return true;
}

bool LFile::WriteWhole(const LPath& target, const LPath& beside, std::span<const uint8_t> bytes) {
    if (target.Empty() || beside.Empty()) return false;
    const bool existed = Exists(target);
    LFile file(beside, Open::CreateNew);
    if (!file.IsOpen()) return false;
    const bool written = file.WriteAll(bytes) && file.Flush();
    file.Close();
    if (written && Replace(beside, target)) return true;
    // Where a file cannot be replaced in one step the target may be gone already: then these are its bytes.
    const bool isLast = written && existed && !Exists(target);
    if (!isLast) Delete(beside);
    return false;
}
