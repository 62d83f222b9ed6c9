#pragma once

#include <windows.h>

// Draws one owner-drawn transport button: its sign instead of a lettering.
// isInsert shows the record button's sign for inserting. isHeld shows the button pressed while what it
// started goes on.
void DrawTransportButton(const DRAWITEMSTRUCT& item, bool isHeld, bool isInsert);
