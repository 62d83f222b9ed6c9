#pragma once

#include "install/InstallTable.h"

// Makes the shortcuts of an installation; false (traced) when one cannot be made.
// Thread: the window thread.
bool MakeShortcuts(const Installation& installation);

// Removes those that lead to this installation. Another copy's, or one that the user has changed to open
// something else, stays.
void RemoveShortcuts(const Installation& installation);
