#include "audio/device/PlayQueue.h"

#include <algorithm>

#include "base/LArith.h"
#include "base/LTrace.h"

// The ring as counts: the oldest queued buffer, and the number of queued ones behind it. Each look takes back
// a returned buffer before it fills a free one, so positions and levels reach the user first. Looks in vain
// are counted instead of timed: 70 in a row, while buffers are queued and the device runs, about ten seconds,
// mean that the device is gone.
// A source that still grows is followed in whole buffers. Once playback has caught up and run dry, it waits
// for half a second of audio at once: both run at the same speed, so it would otherwise run dry at every
// buffer.

void PlayQueue::Start(int32_t bufferFrames) {
    *this = PlayQueue();
    m_bufferFrames = bufferFrames;
    m_takeOff = true;
}

void PlayQueue::Empty() {
    m_oldest = m_queued = 0;
    m_failedLooks = 0;
    m_takeOff = true;
    m_allTaken = m_growing = m_begun = m_ended = false;
}

PlayQueue::Step PlayQueue::Look(bool oldestBack, const LSoundSourceBase& source) {
    if (m_ended) return Step::Wait;
    if (m_queued > 0 && oldestBack) return Step::TakeBack;
    if (m_cueing) return Step::Wait;
    if (m_queued < kBuffers) {
        m_framesToTake = FramesToTake(source);
        m_allTaken = m_framesToTake == 0;
        if (!m_allTaken) return Step::Refill;
        if (m_queued == 0 && !m_growing && !m_paused) {
            LTrace("All buffers empty so notify stopped");
            m_ended = true;
            return Step::End;
        }
    }
    return FailedLook();
}

// The frames for the next buffer. A growing source that ran dry has to gather kGatherBuffers first.
int32_t PlayQueue::FramesToTake(const LSoundSourceBase& source) {
    const auto left = [&source] { return Saturate(int64_t{source.GetLength()} - source.GetPosition()); };
    const int32_t wanted = m_begun && m_queued == 0 ? kGatherBuffers * m_bufferFrames : m_bufferFrames;
    m_growing = left() < wanted && source.IsGrowing();
    const int32_t frames = left();  // asked again: the source may have finished growing meanwhile
    if (m_growing && frames < wanted && (m_begun || frames <= 0)) {
        m_begun = true;
        return 0;
    }
    return Clamp(frames, 0, m_bufferFrames);
}

PlayQueue::Step PlayQueue::FailedLook() {
    const bool canFail = m_queued > 0 && !m_paused;
    if (!canFail || ++m_failedLooks <= kMaxFailedLooks) {
        if (!canFail) m_failedLooks = 0;
        return Step::Wait;
    }
    LTrace("iCountFail so stop - buffers are not being returned");
    m_ended = true;
    return Step::DeviceLost;
}

void PlayQueue::TookBack() {
    m_failedLooks = 0;
    m_oldest = (m_oldest + 1) % kBuffers;
    --m_queued;
}

void PlayQueue::Queued() {
    m_failedLooks = 0;
    m_begun = true;
    ++m_queued;
}

bool PlayQueue::TakesOff() {
    return std::exchange(m_takeOff, false);
}

void PlayQueue::Pause() {
    m_paused = true;
    m_startDelayed = false;
}

void PlayQueue::Play() {
    m_paused = false;
    m_startDelayed = true;
}

bool PlayQueue::StartsNow() {
    if (!m_startDelayed || (m_queued < kStartDepth && !m_allTaken && !m_cueing)) return false;
    m_startDelayed = false;
    return true;
}
