#pragma once

#include <algorithm>
#include <cstdint>

// Pixels of the screen.
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

enum class ViewMode : int32_t { Compact = 0, Normal = 1, Maximized = 2 };

// What a settings file may hold to one of the views.
constexpr ViewMode ToViewMode(int32_t stored) {
    return stored >= 0 && stored <= 2 ? static_cast<ViewMode>(stored) : ViewMode::Normal;
}

// Dialog units of the client area; none for the maximized view.
constexpr ScreenSize ClientUnits(ViewMode view) {
    return view == ViewMode::Compact ? ScreenSize{185, 70} : ScreenSize{280, 140};
}

constexpr bool IsTopMost(ViewMode view, bool wanted) {
    return wanted && view != ViewMode::Maximized;
}
