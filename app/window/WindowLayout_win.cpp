#include "app/window/WindowLayout_win.h"

#include <array>

#include "res/Ids.h"
#include "store/SettingsKeys.h"

// Sizes come from dialog units and not from stored pixels, so the window follows the system font; only the
// position is stored. The size that the user gave the window by dragging is not kept: the next start shows
// the view's own size.

DialogUnits WindowLayout::Units() const {
    RECT box = {0, 0, 4, 8};
    MapDialogRect(m_window, &box);
    return {static_cast<int>(box.right), static_cast<int>(box.bottom)};
}

ScreenSize WindowLayout::WindowSizeOf(ViewMode view) const {
    const ScreenSize units = ClientUnits(view);
    RECT box = {0, 0, units.width, units.height};
    MapDialogRect(m_window, &box);
    AdjustWindowRectEx(&box, static_cast<DWORD>(GetWindowLongA(m_window, GWL_STYLE)), TRUE,
                       static_cast<DWORD>(GetWindowLongA(m_window, GWL_EXSTYLE)));
    return {static_cast<int>(box.right - box.left), static_cast<int>(box.bottom - box.top)};
}

void WindowLayout::LayoutNormalSizeAndPosition() {
    LayoutAs(ToViewMode(Settings::Read(m_state.data.settingsFile, SettingsKeys::kViewMode)));
}

void WindowLayout::LayoutAs(ViewMode view) {
    const LPath& settings = m_state.data.settingsFile;
    const ScreenPoint stored = {Settings::Read(settings, SettingsKeys::kWindowX),
                                Settings::Read(settings, SettingsKeys::kWindowY)};
    const bool wantsTopMost = Settings::Read(settings, SettingsKeys::kTopMost);
    m_view = view;
    if (m_view != ViewMode::Maximized) m_viewBefore = m_view;
    m_isReady = false;
    if (m_view != ViewMode::Maximized && IsZoomed(m_window)) ShowWindow(m_window, SW_RESTORE);
    if (!IsZoomed(m_window)) {
        // Also before maximizing: this is the position to which the window is restored.
        RECT desktop;
        SystemParametersInfoA(SPI_GETWORKAREA, 0, &desktop, 0);
        const ScreenSize size = WindowSizeOf(m_view);
        const ScreenPoint at =
            FitOnDesktop(stored, size,
                         {static_cast<int>(desktop.left), static_cast<int>(desktop.top),
                          static_cast<int>(desktop.right), static_cast<int>(desktop.bottom)});
        SetWindowPos(m_window, nullptr, at.x, at.y, size.width, size.height, SWP_NOZORDER | SWP_NOACTIVATE);
    }
    if (m_view == ViewMode::Maximized) ShowWindow(m_window, SW_SHOWMAXIMIZED);
    m_isReady = true;

    const HMENU menu = GetMenu(m_window);
    CheckMenuRadioItem(menu, CM_VIEW_COMPACT, CM_VIEW_MAXIMIZED,
                       static_cast<UINT>(CM_VIEW_COMPACT + static_cast<int>(m_view)), MF_BYCOMMAND);
    CheckMenuItem(menu, CM_VIEW_FLOAT, MF_BYCOMMAND | (wantsTopMost ? MF_CHECKED : MF_UNCHECKED));
    SetWindowPos(m_window, IsTopMost(m_view, wantsTopMost) ? HWND_TOPMOST : HWND_NOTOPMOST, 0, 0, 0, 0,
                 SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    LayoutControls();
}

void WindowLayout::LayoutControls() {
    RECT client;
    GetClientRect(m_window, &client);
    if (client.right <= 0 || client.bottom <= 0) return;  // minimized
    std::array<ControlPlace, kControlCount> places;
    ::LayoutControls(m_view, {static_cast<int>(client.right), static_cast<int>(client.bottom)}, Units(),
                     places);
    for (const ControlPlace& place : places) {
        const HWND control = GetDlgItem(m_window, place.control);
        // The old pixels are not copied: centred and right-aligned texts would leave traces.
        if (!place.IsHidden())
            SetWindowPos(control, nullptr, place.x, place.y, place.width, place.height,
                         SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOCOPYBITS);
        // Label and bar of sending are shown by whoever knows whether something is sent.
        const bool isOfSending = place.control == IDC_SENDLABEL || place.control == IDC_SENDPROGRESS;
        if (place.IsHidden() || !isOfSending) ShowWindow(control, place.IsHidden() ? SW_HIDE : SW_SHOWNA);
    }
    InvalidateRect(m_window, nullptr, TRUE);
}

void WindowLayout::SetView(ViewMode view) {
    Settings::Write(m_state.data.settingsFile, SettingsKeys::kViewMode, static_cast<int32_t>(view));
    LayoutAs(view);
}

void WindowLayout::ToggleFloat() {
    const LPath& settings = m_state.data.settingsFile;
    Settings::Write(settings, SettingsKeys::kTopMost, !Settings::Read(settings, SettingsKeys::kTopMost));
    LayoutAs(m_view);  // another session may have stored another view
}

void WindowLayout::EvGetMinMaxInfo(MINMAXINFO& info) const {
    if (m_window == nullptr) return;
    const ScreenSize least = WindowSizeOf(m_view == ViewMode::Compact ? ViewMode::Compact : ViewMode::Normal);
    info.ptMinTrackSize = {least.width, least.height};
}

std::optional<ViewMode> WindowLayout::WantedView(WPARAM how) const {
    if (!m_isReady) return std::nullopt;
    if (how == SIZE_MAXIMIZED && m_view != ViewMode::Maximized) return ViewMode::Maximized;
    const bool isRestored = how == SIZE_RESTORED && m_view == ViewMode::Maximized && !IsZoomed(m_window);
    return isRestored ? std::optional(m_viewBefore) : std::nullopt;
}

void WindowLayout::EvDrag(bool isDragging) {
    m_isDragging = isDragging;
    if (!isDragging) EvMove();
}

void WindowLayout::EvMove() {
    // The position of a minimized or maximized window is not stored.
    if (!m_isReady || m_isDragging || IsIconic(m_window) || IsZoomed(m_window)) return;
    RECT box;
    GetWindowRect(m_window, &box);
    Settings::Write(m_state.data.settingsFile, SettingsKeys::kWindowX, static_cast<int32_t>(box.left));
    Settings::Write(m_state.data.settingsFile, SettingsKeys::kWindowY, static_cast<int32_t>(box.top));
}
