#pragma once

#include "base/LPath.h"

// The installed program that this run is to remove, by the second argument: nothing is believed of it that
// does not look like what RemovalCopy wrote there. Empty for anything but the full path of a "corvane.exe",
// other than the running program itself (own), without detours or characters that no name has.
LPath InstalledProgramOf(const LPath& own, std::string_view argument);
