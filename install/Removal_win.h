#pragma once

#include <cstdint>

#include "base/LPath.h"

// The title of everything that a removal shows.
inline constexpr char kRemovalTitle[] = "Removing Corvane";

// A whole run whose first argument is "/uninstall". The first, of the installed program, starts a copy of
// itself elsewhere (RemovalCopy); the copy asks, closes a running Corvane, and removes what was installed.
// Recordings and settings stay, unless the user wants them deleted and confirms how much that is. lengthMs:
// the length of a dictation's audio (LWaveFile::LengthMs).
// Thread: the window thread, with nothing else running.
void RunRemoval(int argumentCount, const char* const* arguments, int32_t (*lengthMs)(const LPath& audio));
