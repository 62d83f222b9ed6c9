#pragma once

#include <windows.h>

#include "base/LOwned.h"

// A hidden window through which a worker thread speaks to the thread that made it: each Post() is followed by
// one EvNotify() on that thread, once it dispatches messages.
// Thread: Post any, everything else the owner's.
class LNotifyWindow {
public:
    class Owner {
    public:
        virtual void EvNotify() = 0;

    protected:
        ~Owner() = default;
    };

    // className: what the platform knows such windows by.
    LNotifyWindow(const char* className, Owner& owner);

    // False when it could not be made.
    explicit operator bool() const { return static_cast<bool>(m_window); }
    void Post() const;
    // What was posted and not yet told is forgotten.
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
