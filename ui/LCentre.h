#pragma once

#include "ui/LWin.h"

// Puts the next dialog that the platform itself opens during the object's lifetime, such as a message box or
// a file dialog, over the middle of its owner, inside the desktop. May be nested.
// Thread: the window thread.
class LCentreNext {
public:
    LCentreNext();
    ~LCentreNext();
    LCentreNext(const LCentreNext&) = delete;
    LCentreNext& operator=(const LCentreNext&) = delete;

private:
    static LRESULT CALLBACK Watch(int code, WPARAM wParam, LPARAM lParam);

    static inline LCentreNext* s_innermost = nullptr;
    LCentreNext* m_outer;
    HHOOK m_hook;
    bool m_isDone = false;
};
