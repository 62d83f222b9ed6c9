#pragma once

#include <algorithm>

// Screen coordinates, in pixels, and rules for placing windows.
struct ScreenPoint {
    int x = 0;
    int y = 0;
    bool operator==(const ScreenPoint&) const = default;
};
struct ScreenSize {
    int width = 0;
    int height = 0;
};
struct ScreenArea {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
};

// A place on the desktop, moved left or up so that the window fits. Of one that is larger than the desktop
// the upper left corner, with its title, stays within.
constexpr ScreenPoint PullOnto(ScreenPoint wanted, ScreenSize window, ScreenArea desktop) {
    const auto fit = [](int at, int size, int low, int high) {
        return std::max(low, std::min(at, high - size));
    };
    return {fit(wanted.x, window.width, desktop.left, desktop.right),
            fit(wanted.y, window.height, desktop.top, desktop.bottom)};
}

// The place of a window in the middle of another, but on the desktop.
constexpr ScreenPoint CentreOver(ScreenArea other, ScreenSize window, ScreenArea desktop) {
    return PullOnto(
        {(other.left + other.right - window.width) / 2, (other.top + other.bottom - window.height) / 2},
        window, desktop);
}
