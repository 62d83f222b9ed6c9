#pragma once

#include <windows.h>

#include "base/LPath.h"

// The executable's own path; empty when it is too long.
LPath LProgramPath();

// Opens a file, or an address of the Internet, with the program that the platform has for it. False when
// there is none, or the file is missing.
bool LOpenDocument(HWND owner, const char* document);

// Starts a program, given by its full path. False when the platform does not.
bool LStartProgram(const LPath& program, const char* arguments);
