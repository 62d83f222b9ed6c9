#pragma once

#include <cstddef>
#include <cstdint>

#include "audio/stream/LSoundSource.h"

// Decides what the player does next with its ring of device buffers: which one it takes back or fills, when
// the device begins, when the material has been heard and when the device is lost. It knows no device: it is
// told what came back, and counts.
// Thread: any, one at a time; the player keeps it inside its critical section.
class PlayQueue {
public:
    static constexpr size_t kBuffers = 70;
    static constexpr size_t kStartDepth = 42;     // queued buffers with which a delayed start begins
    static constexpr int kMaxFailedLooks = 70;    // in a row; one more and the device is lost
    static constexpr int32_t kGatherBuffers = 5;  // what a growing source must have ahead once it ran dry

    enum class Step {
        TakeBack,    // Oldest() has been heard: call TookBack()
        Refill,      // FramesToTake() frames go into Next(): call Queued()
        Wait,        // nothing to do before a buffer comes back
        End,         // everything has been heard; told once
        DeviceLost,  // the device returns no buffers; told once
    };

    // Paused, all buffers empty. bufferFrames: the frames of one buffer.
    void Start(int32_t bufferFrames);
    // The device has been reset: all buffers are empty again, and a take-off is due.
    void Empty();
    // Nothing more is done before Empty().
    void End() { m_ended = true; }

    // oldestBack: whether the device has returned Oldest(). source is asked for what it has left.
    Step Look(bool oldestBack, const LSoundSourceBase& source);
    size_t Oldest() const { return m_oldest; }
    size_t Next() const { return (m_oldest + m_queued) % kBuffers; }
    // How much of the source goes into the next buffer; 0: nothing at present.
    int32_t FramesToTake(const LSoundSourceBase& source);
    int32_t FramesToTake() const { return m_framesToTake; }
    void TookBack();
    void Queued();
    size_t Depth() const { return m_queued; }
    // Nothing follows what is queued.
    bool IsAllTaken() const { return m_allTaken && !m_growing; }

    // The ring is full (or holds all there is) for the first time: the thread may now rise above all others.
    bool TakesOff();

    void Pause();
    // The device begins when StartsNow() says so.
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
    bool m_allTaken = false;  // the source had nothing more when it was asked last
    bool m_growing = false;   // but may have later
    bool m_begun = false;     // the first sound, which is not kept waiting, is past
    bool m_ended = false;
    bool m_cueing = false;
};
