#pragma once

#include <windows.h>

#include <string>
#include <string_view>

#include "base/LOwned.h"

// The module instance for dialogs, icons and window classes; set once at start-up.
HINSTANCE LInstance();
void LSetInstance(HINSTANCE instance);

// The text of a window. Setting an unchanged text does nothing, so that timers cause no flicker.
std::string LWindowText(HWND window);
void LSetWindowText(HWND window, std::string_view text);

// A number of pixels, given for 96 dots per inch, at the screen's font size.
int LScaled(int pixels);

// The width of a text in the font of a device context, in pixels.
int LTextWidth(HDC context, std::string_view text);

// Gives a dialog that has no owner the program's sign, and brings it to the front.
void LShowAsProgram(HWND dialog);

// A message box in the middle of the window that owns it.
int LMessageBox(HWND owner, std::string_view text, std::string_view caption, UINT flags);

// Moves a window over the middle of its owner, and inside the desktop; over the middle of the desktop where
// the owner cannot be seen.
void LCentreOnOwner(HWND window);

// Measures texts in a control's font.
class LTextMeasure {
public:
    explicit LTextMeasure(HWND control);
    ~LTextMeasure();
    LTextMeasure(const LTextMeasure&) = delete;
    LTextMeasure& operator=(const LTextMeasure&) = delete;
    int WidthOf(std::string_view text) const { return LTextWidth(m_context, text); }  // pixels
    // A text without the middle of a path in it, where it is wider than that.
    std::string Fit(std::string_view text, int width) const;

private:
    HWND m_control;
    HDC m_context;
    HGDIOBJ m_before;
};

// Replaces the contents of the clipboard. False when another program keeps it open.
bool LCopyToClipboard(std::string_view text);

// Owners of platform handles (base/LOwned.h).
struct GdiFontTraits {
    using Type = HFONT;
    static Type None() { return nullptr; }
    static void Close(Type h) { DeleteObject(h); }
};
using LFont = LOwned<GdiFontTraits>;

struct IconTraits {
    using Type = HICON;
    static Type None() { return nullptr; }
    static void Close(Type h) { DestroyIcon(h); }
};
using LIcon = LOwned<IconTraits>;

struct GdiBrushTraits {
    using Type = HBRUSH;
    static Type None() { return nullptr; }
    static void Close(Type h) { DeleteObject(h); }
};
using LBrush = LOwned<GdiBrushTraits>;

struct GdiBitmapTraits {
    using Type = HBITMAP;
    static Type None() { return nullptr; }
    static void Close(Type h) { DeleteObject(h); }
};
using LBitmap = LOwned<GdiBitmapTraits>;
