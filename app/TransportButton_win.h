#pragma once

#include <windows.h>

// Draws one owner-drawn transport button: its sign instead of a lettering.
// isHeld shows the button pressed while what it started goes on.
void DrawTransportButton(const DRAWITEMSTRUCT& item, bool isHeld);
