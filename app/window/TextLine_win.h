#pragma once

#include <windows.h>

#include <string>

// Lines of text in owner-drawn static controls. What does not fit ends in dots; the oldest platform has no
// static control that does this.

struct LineColours {
    COLORREF background;
    COLORREF text;
};

// Draws the control's text. right: where the line ends, in pixels of the control; 0: at its edge.
void DrawTextLine(const DRAWITEMSTRUCT& item, const LineColours& colours, int right = 0);
// The text of a control in which it does not fit; empty when it does.
std::string TextThatIsCut(HWND control);
// The width of a text in a control's font, in pixels.
int TextWidth(HWND control, const std::string& text);
