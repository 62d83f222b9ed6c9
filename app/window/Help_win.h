#pragma once

#include <windows.h>

#include <memory>
#include <string>

#include "app/window/HelpPlan.h"
#include "app/window/NewPress.h"

// Shows the program's help, on a thread of its own: the platform's help, or a browser that starts, may keep
// its caller for seconds, or until its user has answered a box.
// Thread: the window thread.
class Help {
public:
    Help();
    ~Help();

    // The window is posted WM_HELPNOTSHOWN, with a value for TextOf, when no help could be shown.
    void Attach(HWND window) { m_window = window; }
    // False while the platform is still busy with the time before.
    bool Show();
    static std::string TextOf(WPARAM result);
    // A message of F1, also one of its repeats; true when help is to be shown.
    bool EvKey() { return m_key.IsNew(GetTickCount(), kRepeatsWithinMs); }

private:
    class Asking;

    HWND m_window = nullptr;
    // The longest delay that a keyboard can be set to, and some.
    static constexpr uint32_t kRepeatsWithinMs = 1500;

    NewPress m_key;
    std::unique_ptr<Asking> m_asking;
};
