#pragma once

#include <cstdint>

// Tells how much has been heard from how much the device says it has played. Many a device counts what it has
// passed on to the next stage, up to a tenth of a second ahead of the ear. What gives it away: soon after it
// began it has played for longer than it has been running.
// Times are millisecond tick counts; counts are frames.
// Thread: any, one at a time.
class PlayClock {
public:
    // A device at its beginning, not running.
    void Reset(int32_t sampleRate);
    void Run(uint32_t nowMs);
    void Hold(uint32_t nowMs);

    // played is the device's count since its beginning. Ask now and then while IsLearning.
    int32_t Heard(int32_t played, uint32_t nowMs);
    // False when a device that has returned buffers of so many frames cannot have been heard so little: its
    // counter, of bytes or bits in many a driver, has wrapped.
    bool IsPossible(int32_t heard, int32_t returned) const {
        return heard >= returned - int64_t{kMostHeldSeconds} * m_sampleRate;
    }
    // True for the first two seconds of running, before the two clocks drift apart.
    bool IsLearning(uint32_t nowMs) const { return RunMs(nowMs) < kLearnMs; }

private:
    static constexpr uint32_t kLearnMs = 2000;
    static constexpr int32_t kMostHeldSeconds = 2;  // of sound, between the return of a buffer and the ear
    uint32_t RunMs(uint32_t nowMs) const { return m_ranMs + (m_running ? nowMs - m_sinceMs : 0); }

    int32_t m_sampleRate = 1;
    uint32_t m_ranMs = 0;
    uint32_t m_sinceMs = 0;
    bool m_running = false;
    int32_t m_lead = 0;
};
