#pragma once

#include <windows.h>

#include "app/window/TransportSign.h"

// Owner-drawn buttons of the main window, in the style of the platform's push buttons.

// Draws a transport button with its symbol. isHeld: shown pressed and coloured, while its activity goes on.
// recordSign: what the record button shows.
void DrawTransportButton(const DRAWITEMSTRUCT& item, bool isHeld, TransportSign recordSign);

// Draws a button as a link: its text, underlined.
void DrawLinkButton(const DRAWITEMSTRUCT& item);
