#pragma once

#include <windows.h>

#include "hardware/HotKey.h"

// Whether the platform would register a hot key now: no program has it, this one neither. Finds out by taking
// it for a moment in the name of the window.
// Thread: that of the window.
bool IsHotKeyFree(HWND window, const HotKey& hotKey);
