#pragma once

#include <gtest/gtest.h>

#include <functional>

#include "base/LThread.h"

// Runs a function once, on a thread of its own, and waits for its end.
class TestThread final : LThread {
public:
    explicit TestThread(std::function<void()> run) : m_run(std::move(run)) {
        EXPECT_TRUE(Start(kThreadNormal));
    }
    ~TestThread() override { Stop(); }

private:
    void ThreadFunction() override { m_run(); }
    std::function<void()> m_run;
};
