#pragma once

#include <span>

#include "app/window/WindowFit.h"

// Place of one control of the main window, in pixels of the client area; hidden controls have no size.
struct ControlPlace {
    int control = 0;
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    bool IsHidden() const { return width <= 0 || height <= 0; }
};

constexpr size_t kControlCount = 21;

// Pixels of four horizontal and eight vertical dialog units.
struct DialogUnits {
    int x4 = 6;
    int y8 = 13;
};

// Places every control in a view. The transport row is the same in every view, and nothing depends on what is
// going on, so nothing jumps when the state changes.
void LayoutControls(ViewMode view, ScreenSize client, DialogUnits units,
                    std::span<ControlPlace, kControlCount> places);
