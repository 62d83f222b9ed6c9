#pragma once

#include "base/LNamedMutex_win.h"

// Only one installation or removal at a time runs in a session.
class OnlySetUp {
public:
    // False: another one runs, and its window has been shown.
    bool IsFirst();

private:
    LNamedMutex m_mutex{"Corvane.Installing"};
};
