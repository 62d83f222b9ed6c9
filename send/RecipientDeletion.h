#pragma once

#include <cstdint>
#include <optional>

#include "base/LFile.h"
#include "base/LPath.h"
#include "send/SendQueueFile.h"
#include "store/CurrentUser.h"
#include "store/SendToSettings.h"

// Deletes one recipient of a user. Recipients are numbered without gaps, so the record file of each one
// behind it takes the place of the one before; and what waits in the queue goes on to the same typist under
// his new number. An entry for the deleted one names no record file any more: it fails, and the user is told.
// A journal in the user's folder says from before the first step until after the last what is to be done, so
// that a deletion which was cut off never sends a dictation to the typist behind the one that was meant.
// Precondition: the caller is the sender of the data folder (sending.lck) and sends nothing meanwhile, as an
// entry in work names its recipient by the old number.
// Errors: false (traced); a pending deletion goes on with the next Finish.
// Thread: one at a time.
class RecipientDeletion {
public:
    RecipientDeletion(const DataFolder& data, uint32_t user, SendQueueFile& queue);

    // Deletes the recipient of this index. False when a deletion was pending, since the number then meant
    // another one; when one of the files concerned is write-protected, the journal cannot be written, the
    // queue not be read, or the user has no such recipient; and when the deletion could not be finished,
    // which IsPending tells. But for that last case nothing has changed.
    bool Begin(int32_t index);
    // Whether a deletion was begun and not finished.
    bool IsPending() const { return !LFile::IsAbsent(m_journal); }
    // Does what the journal says; true when nothing is pending any more.
    bool Finish();

private:
    bool IsProtected(int32_t index, int32_t count) const;
    bool WriteJournal(int32_t index, int32_t count) const;
    LPath Record(int32_t index) const { return RecipientPath(m_dataFolder, m_user, index); }

    LPath m_dataFolder;
    uint32_t m_user;
    SendQueueFile& m_queue;
    LPath m_userFile;
    LPath m_journal;
};

// The number of entries that wait to be sent to a recipient; nothing while the queue cannot be read.
std::optional<int32_t> WaitingFor(const LPath& recipient, const SendQueueFile& queue);
