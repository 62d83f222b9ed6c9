#pragma once

#include <array>
#include <cstdint>
#include <deque>
#include <optional>

#include "hardware/PedalPort.h"

// Turns the control bits of one poll after another into presses and releases. They wait in a queue, because
// the command of a press may run messages, and among them further polls: what these find comes after what the
// earlier ones found.
// Thread: the window thread.
class PedalChanges {
public:
    struct Change {
        int control;  // 0 to 3
        bool isPressed;
    };

    // The bits of the next poll. Changes are queued in the order of the controls.
    void Note(uint32_t bits) {
        for (int control = 0; control < kPedalControls; ++control)
            if ((bits ^ m_bits) >> control & 1) m_queue.push_back({control, (bits >> control & 1) != 0});
        m_bits = bits;
    }

    // Takes the oldest change out of the queue.
    std::optional<Change> Next() {
        if (m_queue.empty()) return std::nullopt;
        const Change change = m_queue.front();
        m_queue.pop_front();
        return change;
    }

private:
    uint32_t m_bits = 0;
    std::deque<Change> m_queue;
};
