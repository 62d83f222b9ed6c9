#pragma once

#include "app/AppState.h"
#include "app/window/ControlLayout.h"
#include "ui/LWin.h"

// Size, place and controls of the main window in its three views. Thread: the window thread.
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
    // The window is never made smaller than its controls need.
    void EvGetMinMaxInfo(MINMAXINFO& info) const;
    // Stores where the window now is; while the user drags it, once when he lets go.
    void EvMove();
    void EvDrag(bool isDragging);
    ViewMode View() const { return m_view; }

private:
    ScreenSize WindowSizeOf(ViewMode view) const;
    DialogUnits Units() const;

    const AppState& m_state;
    HWND m_window = nullptr;
    ViewMode m_view = ViewMode::Normal;
    bool m_isDragging = false;
    bool m_isReady = false;  // moves before the first layout are the platform's, not the user's
};
