#include "audio/device/PlayClock.h"

#include <algorithm>

#include "base/LArith.h"

// A device that counts ahead gives itself away: soon after its start it has played for longer than it has
// been running. The largest such difference is its lead, which is taken off every count. The lead is learned
// during the first two seconds only, while the tick count and the sound card's clock agree; afterwards their
// drift would pass for a lead.
// Trusting the count was rejected: a change of speed, which continues from the place that is heard, then
// skipped 90 ms.

void PlayClock::Reset(int32_t sampleRate) {
    *this = PlayClock();
    m_sampleRate = sampleRate;
}

void PlayClock::Run(uint32_t nowMs) {
    if (m_running) return;
    m_running = true;
    m_sinceMs = nowMs;
}

void PlayClock::Hold(uint32_t nowMs) {
    m_ranMs = RunMs(nowMs);
    m_running = false;
}

int32_t PlayClock::Heard(int32_t played, uint32_t nowMs) {
    if (IsLearning(nowMs)) {
        const int32_t possible = Saturate(int64_t{RunMs(nowMs)} * m_sampleRate / 1000);
        m_lead = std::max(m_lead, played - possible);
    }
    return std::max(played - m_lead, 0);
}
