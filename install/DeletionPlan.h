#pragma once

#include <functional>
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

// What takes deletions back, since files of the same names are there again.

// Whether a path is that of a folder or lies in it, by one of its spellings (the long and the short one).
bool LiesIn(std::string_view path, std::span<const LPath> spellings);

// The contents of "wininit.ini" without the lines of its section "rename" that delete what lies in the
// folder.
std::string WithoutDeletions(std::string_view wininit, std::span<const LPath> spellings);

// Whether a command line of DeletionCommand deletes anything that lies in the folder.
bool DeletesIn(std::string_view command, std::span<const LPath> spellings);

// What the other platforms keep in the registry: pairs of texts, each ended by a zero, the path of what is
// moved, as the platform's core writes it, and that of its target, which is empty where it is deleted, and a
// zero behind all. Leaves out the deletions of what lies in a folder, which is asked by the usual path
// ("C:\..." or "\\server\share\..."); all other bytes stay, also behind the first that is no such pair.
std::wstring WithoutDeletions(std::wstring_view pairs,
                              const std::function<bool(std::wstring_view path)>& liesInFolder);
