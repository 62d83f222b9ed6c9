#include "audio/device/LSoundPlayer_win.h"

#include <algorithm>

#include "audio/stream/LDecibel.h"
#include "base/LArith.h"
#include "base/LTime.h"
#include "base/LTrace.h"

// The thread looks at the ring, acts on one step that PlayQueue decides, and waits for a buffer to return or
// for 150 ms. The critical section is held for one step, so for one buffer at a time; the owner's calls take
// it too. The thread fills the ring at normal priority, after a jump at the lowest, and becomes time-critical
// once the ring is full: playback then survives a busy machine, and filling it anew after a jump leaves the
// machine to others.
// The position is that of the sound heard, not of the data read. It comes with the buffers that return, and
// at a pause, stop, jump or change of speed from the device's sample count, corrected by PlayClock.
// A jump reads half a second ahead before it resets the device, and hands it over at once. Reading after the
// reset was rejected: a slow disk would be heard. At the end 300 ms of silence are queued behind the last
// sound, since devices and sound servers keep the end of their input until more follows. Waiting instead was
// rejected, because it pushes nothing through.

static constexpr char kWindowClass[] = "LWSoundPlayer";
// Longer than a buffer lasts: the event comes first unless the device stalls.
static constexpr uint32_t kLookMs = 150;
// The longest wait, once the last sound was returned, for the silence behind it: a device that keeps the
// silence must not keep the playback open.
static constexpr uint32_t kTailTimeoutMs = 1000;

using NextStep = PlayQueue::Step;

// --- The owner's side --------------------------------------------------------------------------------------

LSoundPlayer::LSoundPlayer(LSoundPlayerNotify& notify) : m_notify(notify), m_window(kWindowClass, *this) {
    ClearLevels();
}

LSoundPlayer::~LSoundPlayer() {
    Stop();
}

void LSoundPlayer::EvNotify() {
    if (m_playing && m_positionChanged.exchange(false)) {
        m_notify.OnPlayPosition(m_position);
        if (m_playing) m_notify.OnPlayLevel();
    }
    if (!m_playing || !m_stopNotify.exchange(false)) return;
    LTrace("LSoundPlayer::Notify() bNotifyStop");
    const Ending ending = m_endReason;
    Stop();
    m_ending = ending;
    m_notify.OnPlayStopped();  // the owner may destroy this object here
}

bool LSoundPlayer::Start(const LSoundSource& source) {
    Stop();
    if (!m_window) {
        LTrace("LSoundPlayer::Start Window Not Created Error");
        return false;
    }
    if (!m_material.Open(source, m_percent) || !OpenDevice() || !LThread::Start(kThreadNormal)) {
        m_device.Close();
        m_material.Close();
        return false;
    }
    m_playing = true;
    m_notify.OnPlayPosition(m_position);
    return true;
}

bool LSoundPlayer::OpenDevice() {
    const LSoundSourceBase& top = m_material.Top();
    if (!m_device.Open(m_deviceId, top.GetChannels(), top.GetSampleRate(), m_material.BufferFrames(),
                       m_bufferDone.NativeHandle()))
        return false;
    m_queue.Start(m_material.BufferFrames());
    m_atEnd = false;
    m_tailBuffers = 0;
    m_levelChannels = top.GetChannels();
    m_clock.Reset(top.GetSampleRate());
    m_resetFrame = top.GetPosition();
    SetHeard(m_resetFrame);
    m_stopNotify = m_positionChanged = false;
    return true;
}

void LSoundPlayer::Stop() {
    if (!m_playing) return;
    m_playing = false;
    LThread::Stop();
    SetHeard(HeardFrame());
    m_device.Close();
    m_material.Close();
    m_stopNotify = m_positionChanged = false;
    m_ending = Ending::Stopped;
    ClearLevels();
}

void LSoundPlayer::ClearLevels() {
    for (auto& level : m_levels) level = kSilenceDb;
}

void LSoundPlayer::Play() {
    if (!m_playing || !m_queue.IsPaused()) return;
    LLock lock(m_section);
    m_queue.Play();
    m_atEndMs = LTickMs();  // the timeout of an end that was paused begins anew
    if (m_queue.StartsNow()) Restart();
    m_bufferDone.Signal();  // a thread that found nothing to do looks again
}

void LSoundPlayer::Pause() {
    if (!m_playing || m_queue.IsPaused()) return;
    {
        LLock lock(m_section);
        m_device.Pause();
        m_clock.Hold(timeGetTime());
        m_queue.Pause();
        SetHeard(HeardFrame());
    }
    m_notify.OnPlayPosition(m_position);
}

void LSoundPlayer::Seek(int32_t frame) {
    if (!m_playing) return;
    {
        LLock lock(m_section);
        m_material.Seek(frame);
        Jump();
    }
    m_notify.OnPlayPosition(m_position);
    if (IsCueing()) m_notify.OnPlayLevel();
}

void LSoundPlayer::Cue(bool on) {
    if (!m_playing) {
        if (on) CueBuffer();
        return;
    }
    if (on == m_queue.IsCueing()) return;
    {
        LLock lock(m_section);
        m_material.Seek(m_material.ToSourceFrame(HeardFrame()));
        m_queue.SetCueing(on);
        if (!Jump()) LTrace("LSoundPlayer::Cue waveOutReset ERROR");
    }
    m_notify.OnPlayPosition(m_position);
    if (on) m_notify.OnPlayLevel();
}

void LSoundPlayer::SetSpeed(int32_t percent) {
    const int32_t before = std::exchange(m_percent, percent);
    if (!m_playing || percent == before) return;
    {
        LLock lock(m_section);
        const int32_t heard = HeardFrame();
        if (!m_material.SetSpeed(percent, m_material.ToSourceFrame(heard))) {
            EndBecause(Ending::DeviceLost);
            return;
        }
        Jump();
    }
    m_notify.OnPlayPosition(m_position);
}

bool LSoundPlayer::GetCueGraph(uint8_t* graph, int32_t spanMs) {
    if (!graph) {
        LTrace("LSoundPlayer::GetCueGraph Buffer == NULL");
        return false;
    }
    const std::span<uint8_t, kCueGraphBytes> bars(graph, kCueGraphBytes);
    std::ranges::fill(bars, uint8_t{0});
    if (!IsCueing()) return true;
    LLock lock(m_section);
    m_material.ReadCueGraph(spanMs, bars);
    return true;
}

// --- Shared by both sides, inside the critical section -----------------------------------------------------
// ------------------------------------------------------

// The frame of the material that is heard now, as exactly as the device tells. Without a believable count
// from the device it is the end of the last buffer heard.
int32_t LSoundPlayer::HeardFrame() {
    int32_t played = 0;
    if (m_queue.Depth() == 0 || m_queue.IsCueing() || !m_device.GetPlayed(played)) return m_heardFrame;
    const int32_t heard = m_clock.Heard(played, timeGetTime());
    if (!m_clock.IsPossible(heard, m_heardFrame - m_resetFrame)) return m_heardFrame;
    return Clamp(Saturate(int64_t{m_resetFrame} + heard), m_resetFrame,
                 std::max(m_material.Top().GetPosition(), m_resetFrame));
}

bool LSoundPlayer::Reset() {
    m_clock.Reset(m_material.Top().GetSampleRate());
    return m_device.Reset();
}

void LSoundPlayer::Restart() {
    m_device.Restart();
    m_clock.Run(timeGetTime());
}

void LSoundPlayer::SetHeard(int32_t frame) {
    m_heardFrame = frame;
    m_position = m_material.ToSourceFrame(frame);
}

// Continues at the material's present place at once: the first half second is read before the device is
// reset.
bool LSoundPlayer::Jump() {
    m_atEnd = false;
    m_tailBuffers = 0;
    m_queue.Empty();
    m_resetFrame = m_material.Top().GetPosition();
    const size_t ahead = m_queue.IsCueing() ? 0 : ReadAhead();
    const bool isReset = Reset();
    if (m_queue.IsPaused() || m_queue.IsStartDelayed())
        m_device.Pause();
    else
        m_clock.Run(timeGetTime());
    SetHeard(m_resetFrame);
    m_stopNotify = m_positionChanged = false;
    size_t queued = 0;
    while (queued < ahead && Queue(m_ahead[queued])) ++queued;
    if (m_queue.IsCueing() && !CueBuffer()) EndBecause(Ending::DeviceLost);
    SetPriority(kThreadLowest);
    m_bufferDone.Signal();
    return isReset;
}

size_t LSoundPlayer::ReadAhead() {
    for (size_t i = 0; i < m_ahead.size(); ++i) {
        const int32_t frames = m_queue.FramesToTake(m_material.Top());
        if (frames == 0) return i;
        m_material.Read(frames, m_ahead[i]);
    }
    return m_ahead.size();
}

// Queues a block. A device that refuses it has ended the playback.
bool LSoundPlayer::Queue(const PlayBlock& block) {
    if (!m_device.Write(m_queue.Next(), block)) {
        EndBecause(Ending::DeviceLost);
        return false;
    }
    m_queue.Queued();
    return true;
}

bool LSoundPlayer::CueBuffer() {
    if (!m_playing) {
        LTrace("LSoundPlayer::CueBuffer() called when not playing ERROR");
        return false;
    }
    m_material.ReadCue(m_block);
    TakeLevels(m_block);
    return m_device.WriteLoop(0, m_block);
}

void LSoundPlayer::TakeLevels(const PlayBlock& block) {
    for (size_t i = 0; i < block.levels.size(); ++i) m_levels[i] = block.levels[i];
}

void LSoundPlayer::EndBecause(Ending ending) {
    m_atEnd = false;
    m_queue.End();
    m_endReason = ending;
    m_stopNotify = true;
    m_window.Post();
}

// --- The thread --------------------------------------------------------------------------------------------

void LSoundPlayer::ThreadFunction() {
    while (!StopRequested()) {
        m_bufferDone.Reset();
        if (!Step()) m_bufferDone.WaitEither(StopEvent(), kLookMs);
    }
}

// One step on the ring; returns false when the next one can wait for the device.
bool LSoundPlayer::Step() {
    LLock lock(m_section);
    bool goOn = true;
    switch (m_queue.Look(m_device.IsBack(m_queue.Oldest()), m_material.Top())) {
        case NextStep::TakeBack:
            TakeBack();
            break;
        case NextStep::Refill:
            goOn = Refill();
            break;
        case NextStep::Wait:
            goOn = false;
            if (m_queue.IsAllTaken() && m_tailBuffers < m_material.TailBuffers()) WriteTail();
            if (!m_queue.TakesOff()) break;
            LTrace("Takeoff-complete lock thread to high priority");
            SetOwnPriority(kThreadTimeCritical);
            break;
        case NextStep::End:
            m_atEnd = true;
            m_atEndMs = LTickMs();
            goOn = false;
            break;
        case NextStep::DeviceLost:
            EndBecause(Ending::DeviceLost);
            return false;
    }
    if (m_queue.StartsNow()) Restart();
    if (m_atEnd && !m_queue.IsPaused() && IsTailHeard()) EndBecause(Ending::AtEnd);
    return goOn;
}

// Queues silence behind the last sound. A buffer that the device returned may still be on its way to the ear,
// through a driver and a sound server that work in blocks and keep their rest when nothing follows. Silence
// pushes it through.
void LSoundPlayer::WriteTail() {
    m_block.samples.assign(static_cast<size_t>(m_material.BufferFrames()) * m_levelChannels, 0);
    m_block.endFrame = LSoundPlayerWaveHeader::kNoAudio;
    while (m_tailBuffers < m_material.TailBuffers() &&
           m_queue.Depth() + m_tailBuffers < PlayQueue::kBuffers) {
        m_tailIndex = (m_queue.Next() + m_tailBuffers) % PlayQueue::kBuffers;
        if (!m_device.Write(m_tailIndex, m_block)) return;
        ++m_tailBuffers;
    }
}

bool LSoundPlayer::IsTailHeard() const {
    return m_tailBuffers == 0 || m_device.IsBack(m_tailIndex) || LTickMs() - m_atEndMs > kTailTimeoutMs;
}

void LSoundPlayer::TakeBack() {
    const LSoundPlayerWaveHeader& buffer = m_device.Buffer(m_queue.Oldest());
    SetHeard(std::max(buffer.EndFrame(), m_heardFrame));
    for (uint8_t i = 0; i < buffer.Channels(); ++i) m_levels[i] = buffer.LevelDb(i);
    m_queue.TookBack();
    if (m_clock.IsLearning(timeGetTime())) HeardFrame();
    m_positionChanged = true;
    m_window.Post();
}

bool LSoundPlayer::Refill() {
    m_material.Read(m_queue.FramesToTake(), m_block);
    return Queue(m_block);
}
