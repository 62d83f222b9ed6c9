#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include "base/LOwned.h"
#include "base/LPath.h"
#include "base/LTime.h"
#include "tests/unit/TestThread.h"

// A file as a virus scanner holds it: nobody else can open it.
class HeldFile {
public:
    explicit HeldFile(const LPath& path)
        : m_file(CreateFileA(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr)) {
        EXPECT_TRUE(m_file);
    }
    void LetGo() { m_file.Reset(); }

private:
    struct Traits {
        using Type = HANDLE;
        static Type None() { return INVALID_HANDLE_VALUE; }
        static void Close(Type h) { CloseHandle(h); }
    };
    LOwned<Traits> m_file;
};

// The same for a moment only.
class BrieflyHeldFile {
public:
    explicit BrieflyHeldFile(const LPath& path) : m_held(path) {}

private:
    HeldFile m_held;
    TestThread m_thread{[this] {
        LSleep(300);
        m_held.LetGo();
    }};
};
