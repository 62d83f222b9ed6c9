#pragma once

#include <cstdint>

#include "base/LFile.h"
#include "base/LPath.h"

// A lock between programs of this Windows session, of another, or of another machine that shares the folder.
// The lock is a file that only one program at a time can have open. The platform closes it when its holder
// ends, however that happens; the file itself stays and means nothing.
// A mutex was rejected: it is known in one session of one machine. Deleting the file afterwards was rejected
// too: another program may be about to open it, and two would then hold the lock.
// Errors: Failed, when the lock file cannot be made.
// Thread: one at a time. The destructor releases it.
class LFileLock {
public:
    // Taken: this object holds the lock, since now or before. Held: another program does. Failed (traced):
    // the lock file cannot be made, as in a folder that is read-only or gone.
    enum class Result { Taken, Held, Failed };

    Result TryTake(const LPath& path);
    // Tries again until waitMs have passed, while another program holds the lock.
    Result Take(const LPath& path, uint32_t waitMs);
    void Release() { m_file.Close(); }
    bool IsTaken() const { return m_file.IsOpen(); }

private:
    LFile m_file;
};
