#pragma once

#include "base/LPath.h"
#include "ui/LModalRunner.h"

// Asks for the folder of a portable recorder's files and for what becomes of them. OK stores the answers;
// false: cancelled, and nothing is stored.
// Thread: the window thread. Runs messages.
bool AskForDockTransfer(const LPath& settingsFile, LModalRunner& runner);
