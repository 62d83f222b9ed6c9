#pragma once

#include "base/LPath.h"
#include "base/LProcess.h"

// Copies a file with the status text "Please wait...". The copy is made under a temporary name of its own
// beside its target and takes its name when it is complete and flushed, so nobody finds half a file under the
// target's name. Another file of that name, whoever put it there, becomes "name (2).ext", or the next number
// that is free; one with the same bytes is the copy already. Where files can be created but not renamed the
// copy is made under its own name, and beside a file that cannot be moved aside under the next free one.
// Other programs may copy to the same target at the same time: Done means that the bytes were seen under a
// name of the target's row, and no file of another is emptied, replaced or deleted.
// Errors: Failed (traced) and Stopped leave nothing of the copy, and the bytes of every other file; one that
// is stopped while a copy in place is read once more leaves it, and finds it the next time.
class LProcessCopyFile final : public LProcess {
public:
    LProcessCopyFile(const LPath& from, const LPath& to) : m_from(from), m_to(to) {}
    ProcessResult Process(ProcessContext& context) override;

private:
    ProcessResult CopyBeside(ProcessContext& context);
    ProcessResult NameCopy(const LPath& copy, ProcessContext& context);
    ProcessResult CopyDirectly(ProcessContext& context);
    void RemoveEmptied(const LPath& path) const;
    LPath Unfinished() const;

    LPath m_from;
    LPath m_to;
};
