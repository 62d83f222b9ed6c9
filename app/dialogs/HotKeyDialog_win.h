#pragma once

#include <optional>
#include <vector>

#include "hardware/HotKey.h"
#include "ui/LWin.h"

// Lets the user choose the command and the key of a hot key; nothing when he cancels. A key that is pressed
// in the key's box is taken with the modifiers that are held, and ends the dialog like OK. Refused are a hot
// key without a key or a command, and the key of one of the others; for a key that another program has the
// user is asked. The caller has taken back the hot keys of this program.
// Thread: the window thread.
std::optional<HotKey> AskForHotKey(HWND owner, const HotKey& before, const std::vector<HotKey>& others);
