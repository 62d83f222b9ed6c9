#pragma once

#include <windows.h>

// Owner-drawn buttons of the main window, in the style of the platform's push buttons.

// Draws a transport button with its symbol. isHeld: shown pressed and coloured, while its activity goes on.
// isInsert: the record button shows the symbol for inserting.
void DrawTransportButton(const DRAWITEMSTRUCT& item, bool isHeld, bool isInsert);

// Draws a button as a link: its text, underlined.
void DrawLinkButton(const DRAWITEMSTRUCT& item);
