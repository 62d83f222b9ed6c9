#pragma once

#include <windows.h>

#include "base/LPath.h"
#include "base/LProcess.h"

// The main window of a copy that runs in this session; null when none does. A message box of it, which may
// have the same title, is not taken for it.
// Thread: the window thread.
HWND FindRunningCopy();

// Its program; empty where none runs, or the platform does not tell (Windows NT 4).
LPath RunningCopyPath();

// Asks a running copy to close, as its close box would: it ends a recording properly and keeps everything.
// False when none runs.
bool AskRunningCopyToClose();

// Waits until no copy runs and its file is free, asking those that are started meanwhile to close, too. After
// 30 s the user is asked to close it himself; nobody is ended by force.
// Returns Stopped when the user gives up. Thread: the window thread. Runs messages.
ProcessResult WaitForRunningCopy(const LPath& program, ProcessContext& context);
