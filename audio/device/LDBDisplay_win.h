#pragma once

#include <windows.h>

#include <cstdint>

// The level meter: a child window of the class "LDBDisplay" that draws the level of one channel, or of two above
// each other, with a peak hold (LMeter). Greyed while disabled. It takes the bitmaps "LDBDisplayGreen" and
// "LDBDisplayRed" from the resources of the module that created it. Without anything that falls it has no timer.
// Thread: the window thread.

// Registers the class unless the platform knows it already.
bool LDBDisplayRegister(HINSTANCE instance);

void LDBDisplaySetLevel(HWND meter, int8_t levelDb);
void LDBDisplaySetLevels(HWND meter, int8_t leftDb, int8_t rightDb);
