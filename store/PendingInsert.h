#pragma once

#include <cstdint>
#include <vector>

#include "base/LPath.h"
#include "store/DictationFiles.h"

// An insertion that is not done: a recording that lies in a file of its own until it is merged into its
// dictation. A small file beside the dictation ("00000012.ins") tells of it from before the first sound until
// the recording is merged or has become a dictation of its own, so that an end of the program at any moment
// leaves the dictation as it was and the recording where it is found again.
// Units:  frames of the dictation's audio.
// Errors: false is traced.
// Thread: the window thread.
struct PendingInsert {
    LPath recording;
    int32_t atFrame = 0;

    // Held: the note cannot be read now. Damaged: it never can, since it holds something else.
    enum class Result { Values, Absent, Held, Damaged };
    static Result Read(const DictationFiles& files, PendingInsert& pending);
    bool Write(const DictationFiles& files) const;
    // Forgets the insertion; the recording stays.
    static bool Forget(const DictationFiles& files);
    // Renames a damaged note, so that another insertion can wait. Returns the new path, empty when it could
    // not be renamed.
    static LPath SetAside(const DictationFiles& files);
    static LPath NoteOf(const DictationFiles& files);
    // The dictations of a folder that wait for an insertion, whether they are there still or not.
    static std::vector<DictationFiles> List(const LPath& folder);
};
