#pragma once

#include <optional>

#include "app/AppState.h"
#include "app/window/ControlLayout.h"
#include "ui/LWin.h"

// Size, position and views of the main window, and the placing of its controls. The rules are portable:
// WindowFit for the window, ControlLayout for the controls.
// Units:  pixels, unless dialog units are named.
// Thread: the window thread.
class WindowLayout {
public:
    explicit WindowLayout(const AppState& state) : m_state(state) {}

    void Attach(HWND window) { m_window = window; }
    // Applies the stored view, position and top-most setting to the window and its menu.
    void LayoutNormalSizeAndPosition();
    // Places the controls in the client area.
    void LayoutControls();
    void SetView(ViewMode view);
    void ToggleFloat();
    // Limits the size from below, so that all controls stay visible.
    void EvGetMinMaxInfo(MINMAXINFO& info) const;
    // Stores the position of the window; while the user drags it, once at the end.
    void EvMove();
    void EvDrag(bool isDragging);
    // The view that a button of the title bar asks for: maximizing is a view, restoring brings back the view
    // before. Nothing when the view stays.
    std::optional<ViewMode> WantedView(WPARAM how) const;
    ViewMode View() const { return m_view; }

private:
    ScreenSize WindowSizeOf(ViewMode view) const;
    DialogUnits Units() const;
    void LayoutAs(ViewMode view);

    const AppState& m_state;
    HWND m_window = nullptr;
    ViewMode m_view = ViewMode::Normal;
    ViewMode m_viewBefore = ViewMode::Normal;  // the last that was not the maximized one
    bool m_isDragging = false;
    bool m_isReady = false;  // false: moves come from our own layout and are not stored
};
