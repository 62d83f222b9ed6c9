#pragma once

#include <windows.h>

#include <optional>

#include "app/transport/PlayPlan.h"
#include "app/window/CommandTarget.h"
#include "app/window/KeyTable.h"

// The keyboard of the main window: sees each message before the dialog does and gives the commands of keys
// (KeyTable). Also suppresses second clicks that would repeat a command.
// Thread: the window thread.
class Keyboard {
public:
    class Target : public CommandTarget {
    public:
        // A winding key goes down or up.
        virtual void WindByKey(WindDirection direction, bool isDown) = 0;
        virtual void SelectAllRows() = 0;
        virtual void PlayRow() = 0;
    };

    explicit Keyboard(Target& target) : m_target(target) {}
    void Attach(HWND window) { m_window = window; }

    // True when the message is handled and must not be dispatched.
    bool PreTranslateMessage(const MSG& message);
    // Treats a held winding key as released; called when its release will not be seen: another window becomes
    // active, a menu opens or the window is dragged.
    void ReleaseHeld();

private:
    KeyFocus FocusOf(HWND control) const;
    bool EvKeyDown(const MSG& message);
    void Act(const KeyAction& action, const MSG& message);
    bool IsSecondPress(int command, DWORD timeMs);
    bool IsSecondClick(const MSG& message) const;

    Target& m_target;
    HWND m_window = nullptr;
    WPARAM m_heldKey = 0;
    int m_lastCommand = 0;
    DWORD m_lastCommandMs = 0;  // tick count
    WindDirection m_direction = WindDirection::Back;
};
