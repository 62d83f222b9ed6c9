#pragma once

#include <windows.h>

#include <cstdint>

#include "base/LOwned.h"

// A mutex that the programs of one Windows session know by its name. One that a program leaves behind when it
// ends in whatever way is free.
// Thread: one at a time. The destructor releases it.
class LNamedMutex {
public:
    explicit LNamedMutex(const char* name) : m_mutex(CreateMutexA(nullptr, FALSE, name)) {}
    ~LNamedMutex() { Release(); }
    LNamedMutex(const LNamedMutex&) = delete;
    LNamedMutex& operator=(const LNamedMutex&) = delete;

    // False when another program has kept it for waitMs, or the platform has none.
    bool Take(uint32_t waitMs) {
        const DWORD waited = m_mutex ? WaitForSingleObject(m_mutex.Get(), waitMs) : WAIT_FAILED;
        m_isTaken = waited == WAIT_OBJECT_0 || waited == WAIT_ABANDONED;
        return m_isTaken;
    }
    // Whether another program has it now. Not to be asked by one that may have it itself.
    bool IsHeld() {
        const bool isHeld = m_mutex && !Take(0);
        Release();
        return isHeld;
    }
    void Release() {
        if (m_isTaken) ReleaseMutex(m_mutex.Get());
        m_isTaken = false;
    }

private:
    struct Traits {
        using Type = HANDLE;
        static Type None() { return nullptr; }
        static void Close(Type h) { CloseHandle(h); }
    };
    LOwned<Traits> m_mutex;
    bool m_isTaken = false;
};
