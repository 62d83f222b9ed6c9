#pragma once

#include <windows.h>

#include "base/LOwned.h"

// A hidden window through which a worker thread notifies the thread that made it: each Post() leads to one
// EvNotify() on that thread, once it dispatches messages. So the owner's code never runs on the worker.
// Errors: without the window (operator bool) nothing is ever notified; the owner refuses to start then.
// Thread: Post any, everything else the owner's.
class LNotifyWindow {
public:
    class Owner {
    public:
        virtual void EvNotify() = 0;

    protected:
        ~Owner() = default;
    };

    // className: the window class, registered on first use.
    LNotifyWindow(const char* className, Owner& owner);

    // False when the window could not be created.
    explicit operator bool() const { return static_cast<bool>(m_window); }
    void Post() const;
    // Destroys the window; notifications still on their way are dropped.
    void Close() { m_window.Reset(); }

private:
    struct WindowTraits {
        using Type = HWND;
        static Type None() { return nullptr; }
        static void Close(Type h) { DestroyWindow(h); }
    };
    static LRESULT CALLBACK WindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

    LOwned<WindowTraits> m_window;
};
