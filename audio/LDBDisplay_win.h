#pragma once

#include <windows.h>

#include <cstdint>

// The level meter: a child window of the class "LDBDisplay" that draws one level from -127 to 127 dB on a
// scale from -48 to 0 dB, green up to -6 dB and red above.
// Thread: the window thread.

// Registers the class unless the platform knows it already.
bool LDBDisplayRegister(HINSTANCE instance);

void LDBDisplaySetLevel(HWND meter, int8_t levelDb);
