#pragma once

#include <cstdint>

#include "base/LScreen.h"

// A stored window position, moved left or up so that the window fits on the desktop, and never to a negative
// position.
constexpr ScreenPoint FitOnDesktop(ScreenPoint stored, ScreenSize window, ScreenArea desktop) {
    const ScreenPoint on = PullOnto(stored, window, desktop);
    return {std::max(0, on.x), std::max(0, on.y)};
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
