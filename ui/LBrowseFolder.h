#pragma once

#include <windows.h>

#include "base/LPath.h"

// Lets the user choose a folder, with a title above the tree. Empty when he cancelled, or chose what is no
// folder of the file system.
// Thread: the window thread. Runs messages.
LPath LBrowseFolder(HWND owner, const char* title);
