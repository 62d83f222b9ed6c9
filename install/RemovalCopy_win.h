#pragma once

#include <windows.h>

#include "base/LPath.h"

// The copy of the program that removes it: a program cannot delete the file that it runs from. The copy lies
// alone in a new folder below the temporary one, so that no library beside it is loaded, and is started with
// "/uninstall" and the path of the installed program.
// Thread: the window thread.
class RemovalCopy {
public:
    // Copies the running program and starts the copy; the caller then ends. False (traced), with nothing left
    // behind, when either is impossible: there is no temporary folder, or no room in it; and in a run that
    // Start has begun, whether or not it knows itself for a copy (IsRunning), since there would be no end.
    static bool Start();

    // Whether this run is such a copy, by where it lies.
    static bool IsRunning();

    // The installed program that this run is to remove, whose first argument is "/uninstall": the running one
    // without a second argument, the one that it names for a copy. Empty when the argument is none that Start
    // has written, or names no file that is there.
    static LPath Installed(int argumentCount, const char* const* arguments);

    // Has the copy deleted with its folder at the next start of the machine, and changes nothing now: it may
    // be called as soon as the copy runs, and again. False when they stay, or this is no copy.
    static bool DeleteItself();
};
