#pragma once

#include <cstdint>
#include <optional>
#include <utility>

// Tells a press of a key from the repeats of a held one, where messages do not: repeats follow one another
// within a time. Units: ms of the tick count.
class NewPress {
public:
    // Called for each message of the key. True for a new press.
    bool IsNew(uint32_t nowMs, uint32_t repeatsWithinMs) {
        const std::optional<uint32_t> before = std::exchange(m_lastMs, nowMs);
        return !before || nowMs - *before > repeatsWithinMs;
    }

private:
    std::optional<uint32_t> m_lastMs;
};
