#pragma once

#include <cstdint>

// Corrects the sample count of a wave-out device to the sound that has been heard. Many a device counts
// samples that it has passed on to the next stage, up to a tenth of a second ahead of the ear.
// Units:  times are millisecond tick counts; counts are frames.
// Thread: any, one at a time.
class PlayClock {
public:
    // The device was opened or reset: its count is 0 and it does not run.
    void Reset(int32_t sampleRate);
    void Run(uint32_t nowMs);
    void Hold(uint32_t nowMs);

    // The frames heard when the device counts played since its reset. Call it now and then while IsLearning.
    int32_t Heard(int32_t played, uint32_t nowMs);
    // False when a device that has returned buffers of that many frames cannot have been heard so little: its
    // counter has wrapped. In drivers that count bytes or bits that happens within hours.
    bool IsPossible(int32_t heard, int32_t returned) const {
        return heard >= returned - int64_t{kMostHeldSeconds} * m_sampleRate;
    }
    // True for the first two seconds of running; later the two clocks drift apart.
    bool IsLearning(uint32_t nowMs) const { return RunMs(nowMs) < kLearnMs; }

private:
    static constexpr uint32_t kLearnMs = 2000;
    static constexpr int32_t kMostHeldSeconds = 2;  // the most sound between a returned buffer and the ear
    uint32_t RunMs(uint32_t nowMs) const { return m_ranMs + (m_running ? nowMs - m_sinceMs : 0); }

    int32_t m_sampleRate = 1;
    uint32_t m_ranMs = 0;
    uint32_t m_sinceMs = 0;
    bool m_running = false;
    int32_t m_lead = 0;
};
