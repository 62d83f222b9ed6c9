#pragma once

#include <windows.h>

#include <span>
#include <vector>

// How a control follows the size of its dialog: what of it moves, or grows, with the right and lower edge.
struct LAnchor {
    int control;
    bool movesX = false, movesY = false;
    bool growsX = false, growsY = false;
};

// Places the controls of a dialog whose size the user changes. The dialog does not become smaller than its
// template. In its title it has the icon of its owner, since with such a frame it would show one of the
// platform's.
// Thread: the window thread.
class LAnchors {
public:
    // To be called from InitDialog, while the dialog has the size of its template.
    void Attach(HWND dialog, std::span<const LAnchor> anchors);
    // To be given the dialog's messages: works off WM_SIZE and WM_GETMINMAXINFO, and leaves the others.
    bool HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) const;

private:
    void EvSize() const;
    void EvGetMinMaxInfo(MINMAXINFO& info) const;

    struct Placed {
        LAnchor anchor;
        RECT box;  // as in the template, in pixels of the client area
    };
    HWND m_dialog = nullptr;
    SIZE m_window = {}, m_client = {};  // of the template
    std::vector<Placed> m_placed;
};
