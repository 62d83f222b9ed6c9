#pragma once

#include <optional>

#include "hardware/HotKey.h"
#include "ui/LWin.h"

// Lets the user choose the command and the key of a hot key; nothing when he cancels. A key that is pressed
// in the key's box is taken with the modifiers that are held, and ends the dialog like OK.
// Thread: the window thread.
std::optional<HotKey> AskForHotKey(HWND owner, const HotKey& before);
