#include "audio/device/PlayClock.h"

#include <algorithm>

#include "base/LArith.h"

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
