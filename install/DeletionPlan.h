#pragma once

#include <span>
#include <string>
#include <string_view>

#include "base/LPath.h"

// How what is in use is deleted at the next start of the machine where the platform has no call for it.

// The contents of "wininit.ini", by which Windows 95 and 98 delete files before anything else starts, with
// one more line: "NUL=<short path>", the last of its section "rename". All other bytes stay. A path that it
// names already is not added.
// The private-profile functions cannot write it, since every key of the section has the same name.
std::string WithDeletion(std::string_view wininit, std::string_view shortPath);

struct DeletedPath {
    LPath path;
    bool isFolder = false;  // which is deleted if it is empty by then
};
// The command line that deletes all of them in this order, with the command interpreter given by its full
// path. Empty without an interpreter, when the platform would cut the line, and when a part of a path would
// be taken for a variable. "command.com", of Windows 95 and 98, deletes only folders, by their short paths.
std::string DeletionCommand(const LPath& interpreter, std::span<const DeletedPath> paths);
