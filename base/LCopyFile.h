#pragma once

#include "base/LPath.h"
#include "base/LProcess.h"

// Copies a file, with the status text "Please wait...". The copy is made under a temporary name of its own
// beside the target and takes the target's name when it is complete and flushed, so nobody finds half a file
// there.
// - Another file that has the target's name is moved aside to "name (2).ext" or the next free number; one
//   with the same bytes is the copy already.
// - Where files can be created but not renamed, the copy is made under its own name; beside a file that
//   cannot be moved aside, under the next free one.
// - Other programs may copy to the same target at the same time. Done means that the bytes were read back
//   under a name of the target's row, and no file of another program is emptied, replaced or deleted.
// Errors: Failed (traced) and Stopped leave nothing of the copy, and the bytes of every other file. The
//         exception is a cancel while a copy in place is read back: the copy stays, and the next run finds
//         it.
// Thread: the one that runs the process.
class LProcessCopyFile final : public LProcess {
public:
    // OwnFolder: nobody else writes there. The copy is then made under the target's name, which must be free,
    // and read but once. Failed also when the source has changed its length meanwhile.
    enum class Into { SharedFolder, OwnFolder };
    LProcessCopyFile(const LPath& from, const LPath& to, Into into = Into::SharedFolder)
        : m_from(from), m_to(to), m_into(into) {}
    ProcessResult Process(ProcessContext& context) override;

private:
    ProcessResult CopyAlone(ProcessContext& context) const;
    ProcessResult CopyBeside(ProcessContext& context);
    ProcessResult NameCopy(const LPath& copy, ProcessContext& context);
    ProcessResult CopyDirectly(ProcessContext& context);
    void RemoveEmptied(const LPath& path) const;
    LPath Unfinished() const;

    LPath m_from;
    LPath m_to;
    Into m_into;
};
