#pragma once

#include <cstddef>
#include <cstdint>

#include "audio/stream/LSoundSource.h"

// Decides the player's next step with its ring of device buffers: take one back, fill one, start the device,
// end, or give the device up. It knows no device: it is told which buffers returned, and counts.
// Units:  frames; a buffer lasts 100 ms, so the ring holds seven seconds.
// Thread: any, one at a time; the player keeps it inside its critical section.
class PlayQueue {
public:
    static constexpr size_t kBuffers = 70;
    static constexpr size_t kStartDepth = 42;     // buffers queued before a delayed start begins: 4.2 s
    static constexpr int kMaxFailedLooks = 70;    // in a row; one more and the device is lost
    static constexpr int32_t kGatherBuffers = 5;  // buffers that a growing source must have after it ran dry

    enum class Step {
        TakeBack,    // Oldest() has been heard: call TookBack()
        Refill,      // FramesToTake() frames go into Next(): call Queued()
        Wait,        // nothing to do before a buffer comes back
        End,         // everything has been heard; told once
        DeviceLost,  // the device returns no buffers; told once
    };

    // Paused, all buffers empty. bufferFrames: the frames of one buffer.
    void Start(int32_t bufferFrames);
    // The device was reset: all buffers are empty again, and TakesOff() is due.
    void Empty();
    // The playback has ended: only Empty() revives it.
    void End() { m_ended = true; }

    // The next step. oldestBack: the device has returned Oldest(). source is asked for the frames that it has
    // left.
    Step Look(bool oldestBack, const LSoundSourceBase& source);
    size_t Oldest() const { return m_oldest; }
    size_t Next() const { return (m_oldest + m_queued) % kBuffers; }
    // The frames of the source that go into the next buffer; 0: none at present.
    int32_t FramesToTake(const LSoundSourceBase& source);
    int32_t FramesToTake() const { return m_framesToTake; }
    void TookBack();
    void Queued();
    size_t Depth() const { return m_queued; }
    // True when the source has nothing behind the queued buffers.
    bool IsAllTaken() const { return m_allTaken && !m_growing; }

    // True, once, when the ring is full (or holds all there is): the thread may now become time-critical.
    bool TakesOff();

    void Pause();
    // Starts the device, delayed until StartsNow().
    void Play();
    bool IsPaused() const { return m_paused; }
    // True from Play() until StartsNow().
    bool IsStartDelayed() const { return m_startDelayed; }
    // True, once, when a delayed start is due: enough is queued, or all there is.
    bool StartsNow();

    // While a cue sounds the ring is left alone: one buffer repeats and never comes back.
    void SetCueing(bool on) { m_cueing = on; }
    bool IsCueing() const { return m_cueing; }

private:
    Step FailedLook();

    int32_t m_bufferFrames = 0;
    int32_t m_framesToTake = 0;
    size_t m_oldest = 0;
    size_t m_queued = 0;
    int m_failedLooks = 0;
    bool m_paused = true;
    bool m_startDelayed = false;
    bool m_takeOff = false;
    bool m_allTaken = false;  // the source had no frames left when last asked
    bool m_growing = false;   // but it may have more later
    bool m_begun = false;     // the first sound, which need not gather, is past
    bool m_ended = false;
    bool m_cueing = false;
};
