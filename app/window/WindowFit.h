#pragma once

#include <algorithm>
#include <cstdint>

// Screen coordinates, in pixels.
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

// A stored window position, moved left or up so that the window fits on the desktop, and never to a negative
// position: on a desktop smaller than the window the title bar with its menu stays within reach.
constexpr ScreenPoint FitOnDesktop(ScreenPoint stored, ScreenSize window, ScreenArea desktop) {
    const auto fit = [](int at, int size, int low, int high) {
        return std::max({0, low, std::min(at, high - size)});
    };
    return {fit(stored.x, window.width, desktop.left, desktop.right),
            fit(stored.y, window.height, desktop.top, desktop.bottom)};
}

// The stored values of the setting "viewmode".
enum class ViewMode : int32_t { Compact = 0, Normal = 1, Maximized = 2 };

// Converts a stored number; any other value is the normal view.
constexpr ViewMode ToViewMode(int32_t stored) {
    return stored >= 0 && stored <= 2 ? static_cast<ViewMode>(stored) : ViewMode::Normal;
}

// Client area of a view when it is chosen, and its smallest, in dialog units. The maximized view has that of
// the normal one, to which it can be restored.
constexpr ScreenSize ClientUnits(ViewMode view) {
    return view == ViewMode::Compact ? ScreenSize{185, 70} : ScreenSize{280, 140};
}

// Whether the window is shown top-most; never when maximized.
constexpr bool IsTopMost(ViewMode view, bool wanted) {
    return wanted && view != ViewMode::Maximized;
}
