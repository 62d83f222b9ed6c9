#pragma once

#include <cstdint>

// Tells a tap from a hold, so that one pedal, key or button gives both push-to-talk (hold) and toggle (tap,
// tap). Times are millisecond tick counts; their unsigned difference survives the counter's wrap after 49.7
// days.
class HoldRule {
public:
    // A press that was carried out; a refused one is not told.
    void Press(uint32_t nowMs) { m_pressMs = nowMs; }

    // True: the control was held down and its release ends what the press began. False: it was a tap; the
    // command goes on, and the press counts as older by the limit, so that the release of the next press,
    // refused since the transport runs already, stops it.
    bool ReleaseStops(uint32_t nowMs, uint32_t holdLimitMs) {
        if (nowMs - m_pressMs > holdLimitMs) return true;
        m_pressMs -= holdLimitMs;
        return false;
    }

private:
    uint32_t m_pressMs = 0;
};

constexpr uint32_t kHoldLimitMs = 500;        // buttons, pedals and dictation microphones
constexpr uint32_t kHotKeyHoldLimitMs = 820;  // global hot keys, whose release is only guessed
