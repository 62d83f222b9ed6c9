#pragma once

#include <cstdint>

#include "base/LFileLock.h"
#include "base/LPath.h"
#include "store/QueueAnswer.h"

// One dictation that waits to be sent.
struct SendQueueEntry {
    LPath dictation;       // its audio file in the user's Sent folder
    LPath recipient;       // the recipient's record file
    uint32_t user = 0;     // number of the sending user
    bool isWhole = false;  // all three keys were there and made sense

    bool operator==(const SendQueueEntry&) const = default;
};

// The queue file, "bgsend.dat": settings format, section "bgsend", keys "count" and for each entry "file%d",
// "sendto%d" and "id%d" (docs/file-formats.md). Entry 0 is the head. What the file holds is not trusted: a
// count below 0 is 0, and one beyond the entries counts as far as there are entries.
// Each operation has a lock file meanwhile, so that programs of several sessions take turns; each change
// writes the file anew and puts it in place in one step, so that whoever ends at any moment leaves it as it
// was before or after. Moving entries down key by key would, cut off half-way, pair one dictation with the
// recipient of another.
// Errors: an operation that fails returns false (traced) and leaves the entries as they were. So does one on
//         a file that is there but cannot be read, as while another program holds it: it only looks empty.
// Thread: one at a time; BGSend guards it with its queue lock.
class SendQueueFile {
public:
    void SetPath(const LPath& path);

    // The first entry, one that is not whole when there is none, and the number of all.
    bool ReadHead(SendQueueEntry& head, int32_t& count) const;
    // Whether an entry names this audio file; unknown while the file cannot be read.
    QueueAnswer Contains(const LPath& dictation) const;
    // Adds an entry behind all others; count becomes the number of all.
    bool Append(const SendQueueEntry& entry, int32_t& count);
    // Takes the head away if it is this one; count becomes the number of those that are left.
    bool RemoveHead(const SendQueueEntry& head, int32_t& count);
    // Puts the head behind all others if it is this one.
    bool MoveHeadToEnd(const SendQueueEntry& head, int32_t& count);
    // With a count of 0 the queue is empty, though the old entries' keys stay until others take their place.
    bool Clear();

private:
    struct Contents;
    enum class Purpose { Read, Change };

    bool Enter(Purpose purpose, LFileLock& turn, Contents& contents) const;
    bool FinishReplacement() const;
    bool Write(const Contents& contents) const;

    LPath m_path;
    LPath m_unfinished;  // beside it: the file that is to replace it
    LPath m_lock;        // beside it
};
