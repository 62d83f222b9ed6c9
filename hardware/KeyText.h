#pragma once

#include <string>

#include "hardware/HotKey.h"

// The platform's name of a key, in the user's language; empty when it has none. isExtended chooses between
// the two keys that share a scan code, such as Home and the 7 of the number pad.
using KeyNamer = std::string (*)(int32_t virtualKey, bool isExtended);

// A hot key as the user reads it: "Ctrl+Alt+Shift+F5". At most 260 characters.
std::string KeyText(const HotKey& hotKey, KeyNamer platformName);
