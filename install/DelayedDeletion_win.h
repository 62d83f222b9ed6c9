#pragma once

#include <windows.h>

#include <span>

#include "install/DeletionPlan.h"

// Has files and empty folders deleted at the next start of the machine, in this order: for those that cannot
// be deleted now, such as a program that runs. What is absent by then, and a folder that something has been
// put into, is no error.
// Files lose their read-only attribute at once. On Windows 95 and 98 files are deleted at the very start, by
// "wininit.ini", and folders, which it cannot delete, when somebody logs on; on the others all are deleted at
// the start, or when this user logs on if he has no right to the former.
// Errors: false (traced) when something stays for good.
// Thread: any.
bool DeleteAtNextStart(std::span<const DeletedPath> paths);

// Takes back what was to be deleted in an existing folder, or the folder itself, at the next start: an
// installation puts files of the same names there. Nothing is written when there is nothing of it.
// Errors: false (traced) when something may be deleted all the same.
// Thread: any.
bool WithdrawDeletions(const LPath& folder);

// The name of an existing file or folder in which every part has at most eight and three characters; the path
// itself where the platform has none.
LPath ShortPathOf(const LPath& path);
