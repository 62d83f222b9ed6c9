#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/LPath.h"
#include "base/LStream.h"

// The result of a read. A file that exists and cannot be read is not an empty one: no caller writes, numbers
// or sends anything on the strength of it.
enum class LReadResult { Values, Absent, Unreadable };

// The usual waits for a file that another program holds: a virus scanner, an indexer or a backup does so for
// moments. The longer one is for moves, which must not leave a dictation half moved.
inline constexpr uint32_t kReadWaitMs = 1000;
inline constexpr uint32_t kMoveWaitMs = 2000;

// A file on disk, owned: it is closed with its object.
// Units:  bytes; waits in milliseconds.
// Errors: operations return false (or a short count); the caller traces the failure in its own terms.
// Thread: one at a time for each object; the static functions any.
class LFile final : public LStream {
public:
    enum class Open {
        Read,          // existing; others may read and write (a file that is being recorded can be read)
        Write,         // existing or new, contents kept; others may read
        CreateNew,     // emptied or new; others may read
        CreateAbsent,  // new, fails when it exists; others may read
        Alone,         // existing or new, contents kept, to be read; nobody else may have it open
    };

    LFile();
    LFile(const LPath& path, Open how);
    ~LFile() override;
    LFile(LFile&&) noexcept;
    LFile& operator=(LFile&&) noexcept;

    bool IsOpen() const;
    void Close();

    size_t Read(std::span<uint8_t> buffer) override;
    bool Seek(int64_t position) override;
    int64_t Position() const override;
    int64_t Size() const override;
    // Tells only for a file opened with Open::Read, and on the product's platform; elsewhere always false.
    bool IsBeingWritten() const override;
    size_t Write(std::span<const uint8_t> bytes) override;
    bool SetEnd() override;
    bool Flush() override;

    // Last write time in seconds since 1970-01-01 00:00 UTC; 0 when it cannot be told.
    int64_t WriteTime() const;
    // Sets it; kept when the file is closed without another write.
    bool SetWriteTime(int64_t secondsSince1970);

    static bool Exists(const LPath& path);
    // True only when the platform says that nothing has this name. A drive that does not answer proves
    // nothing.
    static bool IsAbsent(const LPath& path);
    // Absent, though its drive is there: nothing will come back with the drive.
    static bool IsGone(const LPath& path) { return IsAbsent(path) && IsFolder(LRootOf(path.View())); }
    static bool IsFolder(const LPath& path);
    // Whether another program has the file open, or runs it. One that this user may not open is not held.
    static bool IsHeld(const LPath& path);
    // Whether the file has the read-only attribute.
    static bool IsReadOnly(const LPath& path);
    // Takes the read-only attribute away; false when there is no such file or it stays.
    static bool MakeWritable(const LPath& path);
    // waitMs: the longest wait for another program that keeps the file open.
    static bool Delete(const LPath& path, uint32_t waitMs = 0);
    // Fails when the target exists. Also moves between drives (copies, then deletes the source).
    static bool Move(const LPath& from, const LPath& to, uint32_t waitMs = 0);
    // Puts a finished file in the place of another, which may exist or not. The old contents are lost only
    // when the new ones stand beside them. Waits up to 100 ms for others to let go of the target.
    static bool Replace(const LPath& finished, const LPath& target);
    // After a Replace that failed: where the platform replaces in two steps, the target may be gone and the
    // finished file the only copy. True when it has taken the target's place now. Otherwise it is deleted,
    // but for an only copy, which stays.
    static bool SettleBeside(const LPath& finished, const LPath& target);
    // Replaces a whole file: the bytes are written and flushed under the name beside, in the same folder, and
    // then swapped in. On failure the target is as it was and nothing is left beside it; only where the
    // platform replaces in two steps and the second fails do the bytes stay beside, without a target.
    static bool WriteWhole(const LPath& target, const LPath& beside, std::span<const uint8_t> bytes);
    static bool MakeFolder(const LPath& path);
    static bool DeleteFolder(const LPath& path);
    // Free space on the drive of a folder, in KB, in 64 bits. The largest value when it is unknown, so that
    // no user is warned for nothing.
    static uint64_t FreeSpaceKb(const LPath& folder);
    // Opens a file to be read. One that exists but cannot be opened is tried again until waitMs have passed.
    static LReadResult OpenToRead(const LPath& path, LFile& file, uint32_t waitMs = kReadWaitMs);
    // Reads the whole file, as OpenToRead does. A file longer than maxBytes is Unreadable.
    static LReadResult TryRead(const LPath& path, size_t maxBytes, std::vector<uint8_t>& bytes,
                               uint32_t waitMs = kReadWaitMs);
    // Reads the whole file; false when it cannot be read at once or is longer than maxBytes.
    static bool ReadWhole(const LPath& path, size_t maxBytes, std::vector<uint8_t>& bytes);
    // A new, empty file with the given prefix (three characters count) in the platform's temporary folder;
    // empty path on failure.
    static LPath MakeTemporary(std::string_view prefix);

private:
    // The outcome of one attempt. Held: another program keeps the file open, so another attempt may succeed.
    enum class Attempt { Done, Held, Failed };
    static Attempt TryDelete(const LPath& path);
    static Attempt TryMove(const LPath& from, const LPath& to);
    static Attempt TryReplace(const LPath& finished, const LPath& target);
    template <class Try>
    static bool Persist(uint32_t waitMs, Try attempt);

    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

// One entry of a folder listing. Times are file times: 100 ns units since 1601-01-01 UTC.
struct LFolderEntry {
    std::string name;
    bool isFolder = false;
    bool isLink = false;  // a junction, a symbolic link
    int64_t size = 0;
    uint64_t created = 0;
    uint64_t written = 0;
};

// Calls visit for each entry of a folder that fits a pattern ("*.dat", "*.*"), in the file system's order,
// without "." and "..". visit returns false to end the listing. A folder that does not exist is an empty one.
// Errors: false when the folder cannot be listed or the listing breaks off: entries that were not visited may
//         exist all the same.
bool LListFolder(const LPath& folder, std::string_view pattern,
                 const std::function<bool(const LFolderEntry&)>& visit);
