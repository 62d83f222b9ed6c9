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

// Held while the program's files are being replaced or removed: no copy may be started meanwhile, which would
// keep them from it. While a question stands, Corvane may run.
class ReplacingProgram {
public:
    ReplacingProgram() { m_mutex.Take(0); }
    // Whether another process does that now.
    static bool IsUnderWay() { return LNamedMutex(kName).IsHeld(); }

private:
    static constexpr char kName[] = "Corvane.Replacing";
    LNamedMutex m_mutex{kName};
};
