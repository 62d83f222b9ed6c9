#pragma once

#include <windows.h>

// Draws an owner-drawn transport button with its symbol. isHeld: shown pressed and coloured, while its
// activity goes on. isInsert: the record button shows the symbol for inserting.
void DrawTransportButton(const DRAWITEMSTRUCT& item, bool isHeld, bool isInsert);
