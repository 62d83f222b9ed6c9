#pragma once

#include <windows.h>

#include <cstdint>

// The level meter: a child window of the class "LDBDisplay" that draws a level with a peak hold
// (LMeter). Disabled it is grey. Its brushes are the bitmaps "LDBDisplayGreen" and "LDBDisplayRed" of the
// module that created the window. It has a timer only while the bar or the mark is falling.
// Units:  levels in dB, as in LDecibel.h.
// Thread: the window thread.

// Registers the class unless the platform knows it already.
bool LDBDisplayRegister(HINSTANCE instance);

void LDBDisplaySetLevel(HWND meter, int8_t levelDb);
