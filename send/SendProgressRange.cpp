#include "send/SendProgressRange.h"

#include <algorithm>
#include <cmath>

// Slightly below 0.04, so that 0.24 - 0.2, which binary rounding makes a little less than 0.04, counts as a
// step.
static constexpr double kStep = 0.04 - 1e-9;

void SendProgressRange::SetCount(int32_t entries) {
    if (entries <= 0) {
        m_scale = 1.0;
        m_start = 0.0;
        return;
    }
    m_scale = std::min(m_scale, 1.0 / entries);
    m_start = (1.0 / m_scale - entries) * m_scale;
}

bool SendProgressRange::Accept(double value) {
    if (std::fabs(value - m_lastAccepted) < kStep) return false;
    m_lastAccepted = value;
    return true;
}
