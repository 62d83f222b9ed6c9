#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <functional>
#include <vector>

// Works real dialogs as a hand would: at each tick of a timer the next step, in the window that it waits for.
class Hand {
public:
    struct Step {
        const char* title;              // of the visible window that the step waits for
        std::function<bool(HWND)> act;  // false: not yet
    };

    explicit Hand(std::vector<Step> steps) : m_timer(SetTimer(nullptr, 0, kTickMs, Tick)) {
        s_steps = std::move(steps);
    }
    ~Hand() {
        KillTimer(nullptr, m_timer);
        EXPECT_TRUE(s_steps.empty()) << "nobody showed: " << s_steps.front().title;
    }

    static Step Press(const char* title, WPARAM button) {
        return {title, [button](HWND window) { return PostMessageA(window, WM_COMMAND, button, 0) != 0; }};
    }

private:
    static constexpr UINT kTickMs = 30;
    static void CALLBACK Tick(HWND, UINT, UINT_PTR, DWORD) {
        const HWND window = s_steps.empty() ? nullptr : FindWindowA("#32770", s_steps.front().title);
        if (IsWindowVisible(window) && s_steps.front().act(window)) s_steps.erase(s_steps.begin());
    }
    static inline std::vector<Step> s_steps;
    UINT_PTR m_timer;
};
