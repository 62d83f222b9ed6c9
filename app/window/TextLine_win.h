#pragma once

#include <windows.h>

#include <string>

// Lines of text in owner-drawn static controls. What does not fit ends in dots; the oldest platform has no
// static control that does this.

struct LineColours {
    COLORREF background;
    COLORREF text;
};

// Draws the control's text. right: where the line ends, in pixels of the control. keptBytes: of the text's
// end that is not cut as long as half of the line is enough for it; what is before it is.
void DrawTextLine(const DRAWITEMSTRUCT& item, const LineColours& colours, int right, size_t keptBytes);
// The text of a control in whose line it does not fit; empty when it does.
std::string TextThatIsCut(HWND control, int right);
