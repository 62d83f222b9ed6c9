#include "ui/LAnchors.h"

void LAnchors::Attach(HWND dialog, std::span<const LAnchor> anchors) {
    m_dialog = dialog;
    RECT window = {}, client = {};
    GetWindowRect(dialog, &window);
    GetClientRect(dialog, &client);
    m_window = {window.right - window.left, window.bottom - window.top};
    m_client = {client.right, client.bottom};
    m_placed.clear();
    for (const LAnchor& anchor : anchors) {
        RECT box = {};
        GetWindowRect(GetDlgItem(dialog, anchor.control), &box);
        MapWindowPoints(HWND_DESKTOP, dialog, reinterpret_cast<POINT*>(&box), 2);
        m_placed.push_back({anchor, box});
    }
    const LRESULT icon = SendMessageA(GetWindow(dialog, GW_OWNER), WM_GETICON, ICON_SMALL, 0);
    SendMessageA(dialog, WM_SETICON, ICON_SMALL, icon);
}

bool LAnchors::HandleMessage(UINT message, WPARAM, LPARAM lParam) const {
    switch (message) {
        case WM_SIZE:
            EvSize();
            return true;
        case WM_GETMINMAXINFO:
            EvGetMinMaxInfo(*reinterpret_cast<MINMAXINFO*>(lParam));
            return true;
        default:
            return false;
    }
}

void LAnchors::EvSize() const {
    if (m_placed.empty()) return;
    RECT client = {};
    GetClientRect(m_dialog, &client);
    const LONG moreX = client.right - m_client.cx, moreY = client.bottom - m_client.cy;
    for (const Placed& placed : m_placed) {
        const LAnchor& anchor = placed.anchor;
        const RECT& box = placed.box;
        SetWindowPos(GetDlgItem(m_dialog, anchor.control), nullptr, box.left + (anchor.movesX ? moreX : 0),
                     box.top + (anchor.movesY ? moreY : 0),
                     box.right - box.left + (anchor.growsX ? moreX : 0),
                     box.bottom - box.top + (anchor.growsY ? moreY : 0),
                     SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOCOPYBITS);
    }
}

void LAnchors::EvGetMinMaxInfo(MINMAXINFO& info) const {
    if (m_window.cx > 0) info.ptMinTrackSize = {m_window.cx, m_window.cy};
}
