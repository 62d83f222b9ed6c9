#pragma once

#include <cstdint>

#include "base/LFile.h"
#include "base/LPath.h"

// A lock between programs, of this Windows session, of another, or of another machine that shares the folder:
// a file that only one at a time can have open. The platform lets go of it when its holder ends in whatever
// way, so the file itself means nothing, and stays.
// Thread: one at a time. The destructor releases it.
class LFileLock {
public:
    // Taken: this object holds it, now or already. Held: another does. Failed (traced): its file cannot be
    // made, as in a folder that is read-only or gone.
    enum class Result { Taken, Held, Failed };

    Result TryTake(const LPath& path);
    // Tries again for so long while another holds it.
    Result Take(const LPath& path, uint32_t waitMs);
    void Release() { m_file.Close(); }

private:
    LFile m_file;
};
