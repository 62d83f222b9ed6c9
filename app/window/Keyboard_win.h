#pragma once

#include <windows.h>

#include <optional>

#include "app/transport/PlayPlan.h"
#include "app/window/CommandTarget.h"
#include "app/window/KeyTable.h"

// The keyboard of the main window, and what its mouse must not do twice: sees each message before the dialog does.
// Thread: the window thread.
class Keyboard {
public:
    class Target : public CommandTarget {
    public:
        // A key that winds goes down, or comes up again.
        virtual void WindByKey(WindDirection direction, bool isDown) = 0;
    };

    explicit Keyboard(Target& target) : m_target(target) {}
    void Attach(HWND window) { m_window = window; }

    // True when the message is dealt with.
    bool PreTranslateMessage(const MSG& message);
    // The key that winds will come up unseen: in another window, while a menu is open or the window is dragged.
    void ReleaseHeld();

private:
    KeyFocus FocusOf(HWND control) const;
    bool EvKeyDown(const MSG& message);
    bool IsSecondClick(const MSG& message) const;

    Target& m_target;
    HWND m_window = nullptr;
    WPARAM m_heldKey = 0;
    WindDirection m_direction = WindDirection::Back;
};
