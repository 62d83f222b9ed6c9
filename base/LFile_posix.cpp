#include "base/LFile.h"

#include <dirent.h>
#include <fcntl.h>
#include <fnmatch.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include "base/LOwned.h"
#include "base/LText.h"
#include "base/LTime.h"

// The implementation for the native tests. The program's paths have backslashes, this platform's slashes. Of
// the share modes only "alone" is imitated; tests that need the others run as Windows binaries.

namespace {

struct FileTraits {
    using Type = int;
    static Type None() { return -1; }
    static void Close(Type h) { close(h); }
};

std::string Native(std::string_view path) {
    std::string text(path);
    for (char& c : text) {
        if (c == '\\') c = '/';
    }
    return text;
}

std::string Native(const LPath& path) {
    return Native(path.View());
}

uint64_t ToFileTime(const timespec& time) {
    return kFileTimeOf1970 + static_cast<uint64_t>(time.tv_sec) * kFileTimeSecond +
           static_cast<uint64_t>(time.tv_nsec) / 100;
}

int OpenFile(const LPath& path, LFile::Open how) {
    static constexpr int kFlags[] = {O_RDONLY, O_RDWR | O_CREAT, O_RDWR | O_CREAT | O_TRUNC,
                                     O_RDWR | O_CREAT | O_EXCL, O_RDONLY | O_CREAT};
    if (path.Empty()) return -1;
    LOwned<FileTraits> file(open(Native(path).c_str(), kFlags[static_cast<size_t>(how)] | O_CLOEXEC, 0666));
    struct stat info;
    // A folder is no file, though this platform opens it to be read.
    if (file && fstat(file.Get(), &info) == 0 && S_ISDIR(info.st_mode)) return -1;
    // Share modes: only handles that want a file alone exclude each other here.
    const bool isFree = how != LFile::Open::Alone || flock(file.Get(), LOCK_EX | LOCK_NB) == 0;
    return isFree ? file.Release() : -1;
}

// Repeats a read or write until all bytes are done, none follow, or the call fails.
template <class Byte, class Call>
size_t Transfer(std::span<Byte> bytes, Call call) {
    size_t total = 0;
    while (total < bytes.size()) {
        const ssize_t count = call(bytes.data() + total, bytes.size() - total);
        if (count <= 0) break;
        total += static_cast<size_t>(count);
    }
    return total;
}

}  // namespace

struct LFile::Impl {
    LOwned<FileTraits> file;
};

LFile::LFile() = default;
LFile::LFile(const LPath& path, Open how) {
    if (const int handle = OpenFile(path, how); handle != -1) {
        m_impl = std::make_unique<Impl>();
        m_impl->file.Reset(handle);
    }
}
LFile::~LFile() = default;
LFile::LFile(LFile&&) noexcept = default;
LFile& LFile::operator=(LFile&&) noexcept = default;

bool LFile::IsOpen() const {
    return m_impl != nullptr;
}

void LFile::Close() {
    m_impl.reset();
}

size_t LFile::Read(std::span<uint8_t> buffer) {
    if (!m_impl) return 0;
    return Transfer(buffer, [&](uint8_t* data, size_t size) { return read(m_impl->file.Get(), data, size); });
}

size_t LFile::Write(std::span<const uint8_t> bytes) {
    if (!m_impl) return 0;
    return Transfer(bytes,
                    [&](const uint8_t* data, size_t size) { return write(m_impl->file.Get(), data, size); });
}

bool LFile::Seek(int64_t position) {
    return m_impl && position >= 0 && lseek(m_impl->file.Get(), position, SEEK_SET) == position;
}

int64_t LFile::Position() const {
    return m_impl ? lseek(m_impl->file.Get(), 0, SEEK_CUR) : 0;
}

int64_t LFile::Size() const {
    if (!m_impl) return 0;
    struct stat info;
    return fstat(m_impl->file.Get(), &info) == 0 ? info.st_size : -1;
}

bool LFile::IsBeingWritten() const {
    return false;
}

bool LFile::SetEnd() {
    return m_impl && ftruncate(m_impl->file.Get(), Position()) == 0;
}

bool LFile::Flush() {
    return m_impl && fsync(m_impl->file.Get()) == 0;
}

int64_t LFile::WriteTime() const {
    struct stat info;
    return m_impl && fstat(m_impl->file.Get(), &info) == 0 ? info.st_mtim.tv_sec : 0;
}

bool LFile::SetWriteTime(int64_t secondsSince1970) {
    const timespec times[] = {{0, UTIME_OMIT}, {secondsSince1970, 0}};
    return m_impl && futimens(m_impl->file.Get(), times) == 0;
}

bool LFile::Exists(const LPath& path) {
    struct stat info;
    return !path.Empty() && stat(Native(path).c_str(), &info) == 0 && !S_ISDIR(info.st_mode);
}

bool LFile::IsAbsent(const LPath& path) {
    struct stat info;
    return path.Empty() || (stat(Native(path).c_str(), &info) != 0 && (errno == ENOENT || errno == ENOTDIR));
}

bool LFile::IsFolder(const LPath& path) {
    struct stat info;
    return !path.Empty() && stat(Native(path).c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

bool LFile::IsReadOnly(const LPath& path) {
    struct stat info;
    return !path.Empty() && stat(Native(path).c_str(), &info) == 0 && (info.st_mode & S_IWUSR) == 0;
}

// No program can hold a file on this platform.
bool LFile::IsHeld(const LPath&) {
    return false;
}

bool LFile::MakeWritable(const LPath& path) {
    struct stat info;
    return !path.Empty() && stat(Native(path).c_str(), &info) == 0 &&
           chmod(Native(path).c_str(), info.st_mode | S_IWUSR) == 0;
}

// No program can keep another one from a file on this platform, so there is no Held.
LFile::Attempt LFile::TryDelete(const LPath& path) {
    return unlink(Native(path).c_str()) == 0 ? Attempt::Done : Attempt::Failed;
}

LFile::Attempt LFile::TryMove(const LPath& from, const LPath& to) {
    return IsAbsent(to) ? TryReplace(from, to) : Attempt::Failed;
}

LFile::Attempt LFile::TryReplace(const LPath& finished, const LPath& target) {
    const int result = rename(Native(finished).c_str(), Native(target).c_str());
    return result == 0 ? Attempt::Done : Attempt::Failed;
}

bool LFile::MakeFolder(const LPath& path) {
    return !path.Empty() && mkdir(Native(path).c_str(), 0777) == 0;
}

bool LFile::DeleteFolder(const LPath& path) {
    return !path.Empty() && rmdir(Native(path).c_str()) == 0;
}

uint64_t LFile::FreeSpaceKb(const LPath& folder) {
    struct statvfs info;
    if (folder.Empty() || statvfs(Native(folder).c_str(), &info) != 0) return UINT64_MAX;
    return uint64_t{info.f_bavail} * info.f_frsize / 1024;
}

LPath LFile::MakeTemporary(std::string_view prefix) {
    const char* const folder = std::getenv("TMPDIR");
    std::string path = LFormat("%s/%.3sXXXXXX.tmp", folder ? folder : "/tmp", std::string(prefix).c_str());
    const LOwned<FileTraits> file(mkstemps(path.data(), 4));
    return file ? LPath(path) : LPath();
}

bool LListFolder(const LPath& folder, std::string_view pattern,
                 const std::function<bool(const LFolderEntry&)>& visit) {
    DIR* list = folder.Empty() ? nullptr : opendir(Native(folder).c_str());
    if (!list) return !folder.Empty() && errno == ENOENT;
    const std::string wanted = pattern == "*.*" ? "*" : LUpper(pattern);
    while (const dirent* found = readdir(list)) {
        LFolderEntry entry;
        entry.name = found->d_name;
        if (entry.name == "." || entry.name == "..") continue;
        if (fnmatch(wanted.c_str(), LUpper(entry.name).c_str(), 0) != 0) continue;
        const std::string path = Native(folder) + "/" + entry.name;
        struct stat info;
        entry.isLink = lstat(path.c_str(), &info) == 0 && S_ISLNK(info.st_mode);
        if (stat(path.c_str(), &info) != 0) continue;
        entry.isFolder = S_ISDIR(info.st_mode);
        entry.size = info.st_size;
        entry.written = ToFileTime(info.st_mtim);
        entry.created = entry.written;  // this platform keeps no time of creation
        if (!visit(entry)) break;
    }
    closedir(list);
    return true;
}
