#pragma once

#include <algorithm>
#include <span>

#include "app/window/WindowFit.h"

// Place of one control of the main window. Units: pixels of the client area; a hidden control has no size.
struct ControlPlace {
    int control = 0;
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    bool IsHidden() const { return width <= 0 || height <= 0; }
};

constexpr size_t kControlCount = 21;

// The font's measure: pixels of four horizontal and of eight vertical dialog units.
struct DialogUnits {
    int x4 = 6;
    int y8 = 13;
};

// Width of the beginning of a line whose end is to be read whole, in the unit of the arguments: what the end
// leaves, but at least half of the line.
constexpr int BeginWidth(int room, int begin, int end) {
    return std::min(begin, std::max(room - end, room / 2));
}

// Computes the place of every control in a view. The transport row is the same in every view, and no place
// depends on the state of the window, so nothing moves while the program works. Label
// and bar of sending lie on the end of the state line.
void LayoutControls(ViewMode view, ScreenSize client, DialogUnits units,
                    std::span<ControlPlace, kControlCount> places);
