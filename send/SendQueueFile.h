#pragma once

#include <cstdint>

#include "base/LFile.h"
#include "base/LPath.h"

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
// Errors: a write that fails returns false (traced) and leaves the entries as they were. So does any change
//         of a file that is there but cannot be opened, as while another program holds it: it only looks
//         empty.
// Thread: one at a time; BGSend guards it with its queue lock.
class SendQueueFile {
public:
    // Also finishes or clears away what a run that ended in the middle of a removal left behind.
    void SetPath(const LPath& path);

    int32_t Count() const;
    // Whether an entry names this audio file; true also while the file cannot be opened, since whoever asks
    // wants to take away what does not wait here.
    bool Holds(const LPath& dictation) const;
    // Adds an entry behind all others. The count is written last, so a half-written entry never counts.
    bool Append(const SendQueueEntry& entry);
    // The first entry; one that is not whole when the queue is empty.
    SendQueueEntry Head() const;
    // Both at once. False when the file is there but cannot be opened.
    bool ReadHead(SendQueueEntry& head, int32_t& count) const;
    // Takes the head away. The file is written anew and put in place in one step: moving the entries down key
    // by key would, cut off half-way, pair one dictation with the recipient of another.
    bool RemoveHead();
    // Writes the count alone. With 0 the queue is empty, though the old entries' keys stay until others take
    // their place.
    bool SetCount(int32_t count);

private:
    bool Hold(LFile& file) const;
    bool HasEntry(int32_t index) const;
    int32_t CountEntries(int32_t limit) const;

    LPath m_path;
    LPath m_unfinished;  // beside it: the file that is to replace it
};
