#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "base/LFileLock.h"
#include "base/LPath.h"
#include "store/QueueAnswer.h"

// One dictation that waits to be sent.
struct SendQueueEntry {
    LPath dictation;       // path of its audio file in the user's Sent folder
    LPath recipient;       // the recipient's record file
    uint32_t user = 0;     // number of the sending user
    bool isWhole = false;  // all three keys were present and valid

    bool operator==(const SendQueueEntry&) const = default;
};

// The queue file, "bgsend.dat": settings format, section "bgsend", keys "count" and for each entry "file%d",
// "sendto%d" and "id%d" (docs/file-formats.md). Entry 0 is the head. The contents are not trusted: a count
// below 0 is 0, and one beyond the entries counts as far as there are entries.
// Each operation holds a lock file, so that programs of several sessions take turns. Each change writes the
// whole file anew and puts it in place in one step, so that the end of the program at any moment leaves the
// queue as it was before or after.
// Errors: an operation that fails returns false (traced) and leaves the entries as they were. An existing
//         file that cannot be read, because another program holds it, is such a failure, not an empty queue.
// Thread: one at a time; BGSend guards it with its queue lock.
class SendQueueFile {
public:
    void SetPath(const LPath& path);

    // head: the first entry; isWhole is false when there is none. count: the number of all.
    bool ReadHead(SendQueueEntry& head, int32_t& count) const;
    // All entries, in their order. Does not wait for another program's turn.
    bool ReadAll(std::vector<SendQueueEntry>& entries) const;
    // The same, waiting for the turn and keeping it.
    bool ReadAll(std::vector<SendQueueEntry>& entries, LFileLock& turn) const;
    // Whether an entry names this audio file; unknown while the file cannot be read.
    QueueAnswer Contains(const LPath& dictation) const;
    // Adds an entry at the end; count becomes the number of all. mayAdd is asked with the lock held, and
    // refuses.
    bool Append(const SendQueueEntry& entry, int32_t& count, const std::function<bool()>& mayAdd = {});
    // Removes the head if it equals the given one; count becomes the number of the remaining entries.
    bool RemoveHead(const SendQueueEntry& head, int32_t& count);
    // Removes the entry of a dictation, wherever it stands; count as above.
    bool Remove(const LPath& dictation, int32_t& count);
    // Moves the head to the end if it equals the given one; count as above.
    bool MoveHeadToEnd(const SendQueueEntry& head, int32_t& count);
    // Gives entries other recipients, in one change: those whose dictation is that of a given entry.
    bool SetRecipients(const std::vector<SendQueueEntry>& changed);
    // Empties the queue by a count of 0. The keys of the old entries stay until new ones overwrite them.
    bool Clear();

private:
    struct Contents;
    enum class Purpose { Read, Change };

    static constexpr uint32_t kTurnMs = 500;  // how long to wait for another program's turn

    bool Enter(Purpose purpose, LFileLock& turn, Contents& contents, uint32_t waitMs = kTurnMs) const;
    bool FinishReplacement() const;
    bool Write(const Contents& contents) const;

    LPath m_path;
    LPath m_unfinished;  // beside m_path: the new contents before they take its place
    LPath m_lock;        // beside m_path: the lock file
};
