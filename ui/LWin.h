#pragma once

#include <windows.h>

#include <string>
#include <string_view>

#include "base/LOwned.h"

// The module instance that every dialog, icon and window class is created from; set once at start-up.
HINSTANCE LInstance();
void LSetInstance(HINSTANCE instance);

// Text of a window, and setting it only when it changes (no flicker from timers).
std::string LWindowText(HWND window);
void LSetWindowText(HWND window, std::string_view text);

// A message box owned by a window; text and caption are the program's own.
int LMessageBox(HWND owner, std::string_view text, std::string_view caption, UINT flags);

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

struct GdiPenTraits {
    using Type = HPEN;
    static Type None() { return nullptr; }
    static void Close(Type h) { DeleteObject(h); }
};
using LPen = LOwned<GdiPenTraits>;
