#pragma once

#include <windows.h>

#include "base/LPath.h"

// A shortcut: a file ".lnk" that the shell shows as a sign and that opens another file.
// Errors: false, or empty (traced), also where the platform has no shell that knows shortcuts.
// Thread: one that runs no multithreaded apartment of COM, as the window thread.
struct ShellLink {
    LPath target;         // the file that it opens
    LPath workingFolder;  // the program's current folder; may be empty
    const char* description = "";
    LPath icon;  // the file whose first icon it shows; empty: that of the target

    // Writes it, over an existing one; the caller has made its folder.
    bool Write(const LPath& file) const;

    // The target of an existing shortcut, found without searching for a file that has moved. Empty when the
    // file is absent or no shortcut, or leads to something that is no file.
    static LPath TargetOf(const LPath& file);
};
