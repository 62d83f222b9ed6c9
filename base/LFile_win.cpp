#include "base/LFile.h"

#include <windows.h>

#include <algorithm>

#include "base/LOwned.h"
#include "base/LSystemFunction_win.h"
#include "base/LTime.h"

// Files through the ANSI calls that Windows 95 exports. Newer calls (replacing in one step, the free space of
// a large drive) are looked up at run time, with the older ones as fallback: importing one that is missing
// would keep the program from starting.
// Replacing a file takes one step where the platform can; on Windows 95 and 98 it takes two, and between them
// the finished file is the only copy (see LFile::WriteWhole). A call that fails because another program holds
// the file is told apart by its error code, since only that is worth another attempt. An access that is
// denied counts as held unless the file is a folder or read-only.
// Whether a file is being written is found out by opening it once more without allowing writers.

namespace {

struct FileTraits {  // CreateFileA fails with -1, not with 0
    using Type = HANDLE;
    static Type None() { return INVALID_HANDLE_VALUE; }
    static void Close(Type h) { CloseHandle(h); }
};

struct FindTraits {
    using Type = HANDLE;
    static Type None() { return INVALID_HANDLE_VALUE; }
    static void Close(Type h) { FindClose(h); }
};

uint64_t Join(DWORD high, DWORD low) {
    return static_cast<uint64_t>(high) << 32 | low;
}

uint64_t ToFileTime(const FILETIME& time) {
    return Join(time.dwHighDateTime, time.dwLowDateTime);
}

HANDLE OpenFile(const LPath& path, LFile::Open how) {
    if (path.Empty()) return INVALID_HANDLE_VALUE;
    switch (how) {
        case LFile::Open::Read:
            return CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                               OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL | FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
        case LFile::Open::Write:
            return CreateFileA(path.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                               OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
        case LFile::Open::CreateNew:
            return CreateFileA(path.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                               CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
        case LFile::Open::CreateAbsent:
            return CreateFileA(path.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                               CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
        case LFile::Open::Alone:
            // Opened to be read only: the file of another Windows user need not allow writing.
            return CreateFileA(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL,
                               nullptr);
    }
    return INVALID_HANDLE_VALUE;
}

// Whether a call failed because another program keeps the file open.
bool IsHeldByOthers(const LPath& file, DWORD error) {
    if (error == ERROR_LOCK_VIOLATION) return true;
    if (error != ERROR_SHARING_VIOLATION && error != ERROR_ACCESS_DENIED) return false;
    const DWORD attributes = GetFileAttributesA(file.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES &&
           !(attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY));
}

// ERROR_SUCCESS or the reason of the failure.
DWORD ReplaceOnce(const LPath& finished, const LPath& target) {
    using MoveFileEx = BOOL(WINAPI*)(LPCSTR, LPCSTR, DWORD);
    const auto moveFileEx = LSystemFunction<MoveFileEx>("MoveFileExA");
    if (moveFileEx) {
        const DWORD flags = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH | MOVEFILE_COPY_ALLOWED;
        if (moveFileEx(finished.c_str(), target.c_str(), flags)) return ERROR_SUCCESS;
        if (GetLastError() != ERROR_CALL_NOT_IMPLEMENTED) return GetLastError();
    }
    // Windows 95 and 98 cannot replace in one step. The finished file is complete, so the target may go
    // first.
    const bool moved = (!LFile::Exists(target) || DeleteFileA(target.c_str())) &&
                       MoveFileA(finished.c_str(), target.c_str());
    return moved ? ERROR_SUCCESS : GetLastError();
}

}  // namespace

struct LFile::Impl {
    LOwned<FileTraits> file;
    LPath path;  // of a file opened with Open::Read, for IsBeingWritten
};

LFile::LFile() = default;
LFile::LFile(const LPath& path, Open how) {
    if (const HANDLE handle = OpenFile(path, how); handle != INVALID_HANDLE_VALUE) {
        m_impl = std::make_unique<Impl>();
        m_impl->file.Reset(handle);
        if (how == Open::Read) m_impl->path = path;
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
    size_t total = 0;
    while (m_impl && total < buffer.size()) {
        const DWORD wanted = static_cast<DWORD>(std::min<size_t>(buffer.size() - total, 1u << 24));
        DWORD count = 0;
        if (!ReadFile(m_impl->file.Get(), buffer.data() + total, wanted, &count, nullptr) || count == 0)
            break;
        total += count;
    }
    return total;
}

size_t LFile::Write(std::span<const uint8_t> bytes) {
    size_t total = 0;
    while (m_impl && total < bytes.size()) {
        const DWORD wanted = static_cast<DWORD>(std::min<size_t>(bytes.size() - total, 1u << 24));
        DWORD count = 0;
        const BOOL ok = WriteFile(m_impl->file.Get(), bytes.data() + total, wanted, &count, nullptr);
        total += count;
        if (!ok || count == 0) break;
    }
    return total;
}

bool LFile::Seek(int64_t position) {
    if (!m_impl || position < 0) return false;
    LONG high = static_cast<LONG>(position >> 32);
    const LONG low = static_cast<LONG>(static_cast<uint32_t>(position));
    // -1 is also the low half of a valid position, so only the error code tells.
    return SetFilePointer(m_impl->file.Get(), low, &high, FILE_BEGIN) != INVALID_SET_FILE_POINTER ||
           GetLastError() == NO_ERROR;
}

int64_t LFile::Position() const {
    if (!m_impl) return 0;
    LONG high = 0;
    const DWORD low = SetFilePointer(m_impl->file.Get(), 0, &high, FILE_CURRENT);
    if (low == INVALID_SET_FILE_POINTER && GetLastError() != NO_ERROR) return 0;
    return static_cast<int64_t>(Join(static_cast<DWORD>(high), low));
}

int64_t LFile::Size() const {
    if (!m_impl) return 0;
    DWORD high = 0;
    const DWORD low = GetFileSize(m_impl->file.Get(), &high);
    if (low == INVALID_FILE_SIZE && GetLastError() != NO_ERROR) return -1;
    return static_cast<int64_t>(Join(high, low));
}

// Opening the file once more without allowing writers fails while there is one. When there is none, this
// keeps writers out for a moment.
bool LFile::IsBeingWritten() const {
    if (!m_impl || m_impl->path.Empty()) return false;
    const LOwned<FileTraits> again(CreateFileA(m_impl->path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                               OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    return !again && GetLastError() == ERROR_SHARING_VIOLATION;
}

bool LFile::SetEnd() {
    return m_impl && SetEndOfFile(m_impl->file.Get());
}

bool LFile::Flush() {
    return m_impl && FlushFileBuffers(m_impl->file.Get());
}

int64_t LFile::WriteTime() const {
    FILETIME written;
    if (!m_impl || !GetFileTime(m_impl->file.Get(), nullptr, nullptr, &written)) return 0;
    const uint64_t time = ToFileTime(written);
    return time < kFileTimeOf1970 ? 0 : static_cast<int64_t>((time - kFileTimeOf1970) / kFileTimeSecond);
}

bool LFile::SetWriteTime(int64_t secondsSince1970) {
    const uint64_t time = kFileTimeOf1970 + static_cast<uint64_t>(secondsSince1970) * kFileTimeSecond;
    const FILETIME written = {static_cast<DWORD>(time), static_cast<DWORD>(time >> 32)};
    return m_impl && SetFileTime(m_impl->file.Get(), nullptr, nullptr, &written);
}

bool LFile::Exists(const LPath& path) {
    if (path.Empty()) return false;
    const DWORD attributes = GetFileAttributesA(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && !(attributes & FILE_ATTRIBUTE_DIRECTORY);
}

bool LFile::IsAbsent(const LPath& path) {
    if (path.Empty()) return true;
    if (GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES) return false;
    const DWORD error = GetLastError();
    return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND || error == ERROR_INVALID_NAME ||
           error == ERROR_BAD_PATHNAME;
}

bool LFile::IsFolder(const LPath& path) {
    const DWORD attributes = path.Empty() ? INVALID_FILE_ATTRIBUTES : GetFileAttributesA(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool LFile::IsReadOnly(const LPath& path) {
    const DWORD attributes = path.Empty() ? INVALID_FILE_ATTRIBUTES : GetFileAttributesA(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0;
}

// Windows 95 and 98, which know no rights, may deny the access to a program that runs.
bool LFile::IsHeld(const LPath& path) {
    if (path.Empty()) return false;
    const LOwned<FileTraits> opened(CreateFileA(path.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ,
                                                nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    const DWORD error = opened ? ERROR_SUCCESS : GetLastError();
    const bool knowsRights = (GetVersion() & 0x80000000U) == 0;
    return error == ERROR_SHARING_VIOLATION || error == ERROR_LOCK_VIOLATION ||
           (error == ERROR_ACCESS_DENIED && !knowsRights && !IsReadOnly(path));
}

bool LFile::MakeWritable(const LPath& path) {
    const DWORD attributes = path.Empty() ? INVALID_FILE_ATTRIBUTES : GetFileAttributesA(path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES || !(attributes & FILE_ATTRIBUTE_READONLY))
        return attributes != INVALID_FILE_ATTRIBUTES;
    return SetFileAttributesA(path.c_str(), attributes & ~DWORD{FILE_ATTRIBUTE_READONLY}) != FALSE;
}

LFile::Attempt LFile::TryDelete(const LPath& path) {
    if (DeleteFileA(path.c_str())) return Attempt::Done;
    return IsHeldByOthers(path, GetLastError()) ? Attempt::Held : Attempt::Failed;
}

LFile::Attempt LFile::TryMove(const LPath& from, const LPath& to) {
    if (MoveFileA(from.c_str(), to.c_str())) return Attempt::Done;
    const DWORD error = GetLastError();
    return IsAbsent(to) && IsHeldByOthers(from, error) ? Attempt::Held : Attempt::Failed;
}

LFile::Attempt LFile::TryReplace(const LPath& finished, const LPath& target) {
    const DWORD error = ReplaceOnce(finished, target);
    if (error == ERROR_SUCCESS) return Attempt::Done;
    return IsHeldByOthers(Exists(target) ? target : finished, error) ? Attempt::Held : Attempt::Failed;
}

bool LFile::MakeFolder(const LPath& path) {
    return !path.Empty() && CreateDirectoryA(path.WithoutSeparator().c_str(), nullptr);
}

bool LFile::DeleteFolder(const LPath& path) {
    const LPath folder = path.WithoutSeparator();
    const DWORD attributes = folder.Empty() ? INVALID_FILE_ATTRIBUTES : GetFileAttributesA(folder.c_str());
    return !(attributes & FILE_ATTRIBUTE_REPARSE_POINT) && RemoveDirectoryA(folder.c_str());
}

uint64_t LFile::FreeSpaceKb(const LPath& folder) {
    using GetDiskFreeSpaceEx = BOOL(WINAPI*)(LPCSTR, PULARGE_INTEGER, PULARGE_INTEGER, PULARGE_INTEGER);
    const auto getDiskFreeSpaceEx = LSystemFunction<GetDiskFreeSpaceEx>("GetDiskFreeSpaceExA");
    ULARGE_INTEGER available;
    ULARGE_INTEGER total;
    if (getDiskFreeSpaceEx && getDiskFreeSpaceEx(folder.c_str(), &available, &total, nullptr)) {
        return available.QuadPart / 1024;
    }
    // The older call takes a root, not any folder.
    const LPath root = LRootOf(folder.View());
    DWORD sectors = 0;
    DWORD sectorBytes = 0;
    DWORD freeClusters = 0;
    DWORD clusters = 0;
    if (!GetDiskFreeSpaceA(root.c_str(), &sectors, &sectorBytes, &freeClusters, &clusters)) return UINT64_MAX;
    return uint64_t{sectors} * sectorBytes * freeClusters / 1024;
}

LPath LFile::MakeTemporary(std::string_view prefix) {
    char folder[kPathSize];
    char name[kPathSize];
    const DWORD length = GetTempPathA(sizeof folder, folder);
    if (length == 0 || length >= sizeof folder) return {};
    if (!GetTempFileNameA(folder, std::string(prefix).c_str(), 0, name)) return {};
    return LPath(name);
}

bool LListFolder(const LPath& folder, std::string_view pattern,
                 const std::function<bool(const LFolderEntry&)>& visit) {
    const LPath search = LPath::Join(folder.View(), pattern);
    if (folder.Empty() || search.Empty()) return false;
    WIN32_FIND_DATAA found;
    const LOwned<FindTraits> list(FindFirstFileA(search.c_str(), &found));
    if (!list) {
        const DWORD error = GetLastError();
        return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND || error == ERROR_NO_MORE_FILES;
    }
    do {
        LFolderEntry entry;
        entry.name = found.cFileName;
        if (entry.name == "." || entry.name == "..") continue;
        entry.isFolder = (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
        entry.isLink = (found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
        entry.size = static_cast<int64_t>(Join(found.nFileSizeHigh, found.nFileSizeLow));
        entry.created = ToFileTime(found.ftCreationTime);
        entry.written = ToFileTime(found.ftLastWriteTime);
        if (!visit(entry)) return true;
    } while (FindNextFileA(list.Get(), &found));
    return GetLastError() == ERROR_NO_MORE_FILES;
}
