#pragma once

#include <cstdint>

// Tells a tap from a hold, so that one pedal, key or button offers both push-to-talk (hold) and toggle (tap,
// tap).
// Units:  millisecond tick counts; their unsigned difference survives the counter's wrap after 49.7 days.
class HoldRule {
public:
    // A press whose command was carried out. Refused presses are not reported here.
    void Press(uint32_t nowMs) { m_pressMs = nowMs; }

    // A release. True: the control was held for longer than the limit, and the release ends the command of
    // the press. False: it was a tap and the command goes on. The time of the press is then moved back by the
    // limit: the next press is refused, because the transport runs already, and its release, counted from the
    // moved time, exceeds the limit and stops the command.
    bool ReleaseStops(uint32_t nowMs, uint32_t holdLimitMs) {
        if (nowMs - m_pressMs > holdLimitMs) return true;
        m_pressMs -= holdLimitMs;
        return false;
    }

private:
    uint32_t m_pressMs = 0;
};

// A press that lasts longer is a hold: for buttons, pedals and dictation microphones.
constexpr uint32_t kHoldLimitMs = 500;
// The same for global hot keys. Longer, because the platform does not report their release; it is only
// guessed.
constexpr uint32_t kHotKeyHoldLimitMs = 820;
