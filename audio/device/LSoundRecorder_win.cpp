#include "audio/device/LSoundRecorder_win.h"

#include "audio/stream/LKernels.h"
#include "base/LTime.h"
#include "base/LTrace.h"

// The thread moves buffers; VoiceGate decides about each block of 100 ms. A returned buffer is converted,
// handed back to the device, and only then written: the ring of three seconds so covers a disk that is slow.
// The thread is time-critical while the device runs, and only then touches the sink.
// Events move the thread: the device signals each buffer, the owner signals start and stop. Because the
// signal is a single flag for the whole ring, the done flag of the next buffer is read before and after the
// reset of the event.
// On Stop the device runs on for a short while before it is reset, and all returned buffers are still written
// (TakeLate). Stopping at once was rejected: it cuts the last syllable off. The thread itself never stops the
// recording; it posts to the hidden window, and the owner's thread stops it there, so that the sink is closed
// on the owner's side.

static constexpr char kWindowClass[] = "LWSoundRecorder";
static constexpr uint32_t kStartTimeoutMs = 700;   // that Start may keep the window waiting for the device
static constexpr uint32_t kBufferTimeoutMs = 200;  // two buffers, then the device is looked at again
static constexpr uint32_t kEndTimeoutMs = 5000;
// A device that returns no buffer for this long, though it owns all of them, has been unplugged.
static constexpr uint32_t kDeviceLostMs = 5000;

// For how long the device runs on after Stop. Drivers and sound servers deliver in blocks of up to 50 ms;
// measured, the last 12 to 75 ms of speech were still on their way when Stop came.
static constexpr uint32_t kTailMs = 80;

using State = VoiceGate::State;

LSoundRecorder::LSoundRecorder(LSoundRecorderNotify& notify, int32_t stoppedValue)
    : m_notify(notify), m_stoppedValue(stoppedValue), m_window(kWindowClass, *this) {
    if (!m_window) LTrace("LSoundRecorder::LSoundRecorder CreateWindowEx FAILED");
}

LSoundRecorder::~LSoundRecorder() {
    Stop();
    m_window.Close();
    LThread::Stop(kEndTimeoutMs);
}

void LSoundRecorder::EvNotify() {
    if (!m_active) return;
    if (m_stopRequested) {
        Stop();
        return;  // the owner may have destroyed this object
    }
    if (m_levelChanged.exchange(false)) {
        m_notify.OnTime(m_lastLoudMs);
        m_notify.OnLevel();
    }
    if (m_stateChanged.exchange(false)) {
        if (m_state == State::Waiting)
            m_notify.OnWaiting();
        else
            m_notify.OnRecording();
    }
}

bool LSoundRecorder::Start(const LSoundSink& sink, int32_t hangTimeMs, int8_t thresholdDb, int32_t maxTimeMs,
                           uint32_t flags) {
    Stop();
    if (!m_window) {
        LTrace("LSoundRecorder::Start Window Not Created Error");
        return false;
    }
    if (!sink || sink->IsError()) {
        LTrace("LSoundRecorder::Start Sink Error");
        return false;
    }
    m_sink = sink;
    m_levelChannels = sink->GetChannels();
    m_gate.Start(sink, {thresholdDb, hangTimeMs, maxTimeMs, (flags & kRecordAtOnce) != 0});
    m_lastLoudMs = m_gate.LastLoudMs();
    m_state = m_gate.GetState();
    m_ending = Ending::Stopped;
    m_started.Reset();
    if (flags & kArmOnly)
        m_go.Reset();
    else
        m_go.Signal();
    m_active =
        LThread::Start(kThreadNormal) && WaitUntilStarted("LSoundRecorder::Start Wait for Start FAILED");
    if (!m_active) {
        LTrace("LSoundRecorder::Start ThreadStart must have failed so return false");
        Release();
        return false;
    }
    if (flags & kRecordAtOnce)
        m_notify.OnRecording();
    else
        m_notify.OnWaiting();
    m_notify.OnTime(m_lastLoudMs);
    return true;
}

// A device that takes longer to open counts as started. When it fails later, the recording is stopped.
bool LSoundRecorder::WaitUntilStarted(const char* lateTrace) {
    if (!m_started.Wait(kStartTimeoutMs)) LTrace(lateTrace);
    return m_state != State::Stopped;
}

bool LSoundRecorder::Restart() {
    if (!m_active) return false;
    if (!WaitUntilStarted("LSoundRecorder::Restart Wait for Start FAILED")) {
        LTrace("LSoundRecorder::Restart ThreadStart must have failed");
        return false;
    }
    m_go.Signal();
    return true;
}

void LSoundRecorder::Stop() {
    if (!m_active) return;
    Release();
    m_notify.OnStopped(m_stoppedValue);
}

// Ends the thread and lets go of the sink.
void LSoundRecorder::Release() {
    LThread::Stop();
    m_active = false;
    m_endMs = m_gate.Stop();
    if (m_sink->IsError()) m_ending = Ending::WriteError;
    m_sink.Reset();
    m_lastLoudMs = 0;
    m_state = State::Stopped;
    m_stopRequested = m_levelChanged = m_stateChanged = false;
}

void LSoundRecorder::ThreadFunction() {
    if (!OpenDevice()) {
        m_waveIn.Close();
        m_state = State::Stopped;
        EndBecause(Ending::DeviceLost);
        m_started.Signal();
        return;
    }
    m_started.Signal();
    const size_t index = Run();
    if (m_gate.GetState() == State::Recording && m_ending != Ending::DeviceLost) Sleep(kTailMs);
    m_waveIn.TakeBack();
    Drain(index);
    m_waveIn.Close();
    m_stopRequested = m_levelChanged = m_stateChanged = false;
}

bool LSoundRecorder::OpenDevice() {
    return m_waveIn.Open(m_device, m_sink->GetChannels(), m_sink->GetSampleRate(),
                         m_bufferDone.NativeHandle()) &&
           m_waveIn.QueueAll();
}

// Records until the stop event. Returns the index of the buffer that would come next.
size_t LSoundRecorder::Run() {
    size_t index = 0;
    if (m_go.WaitEither(StopEvent(), kWaitForever) != 0) return index;
    SetOwnPriority(kThreadTimeCritical);
    if (!m_waveIn.Start()) EndBecause(Ending::DeviceLost);
    m_lastBufferTick = LTickMs();
    while (!StopRequested()) {
        if (m_ending != Ending::Stopped && m_ending != Ending::MaxTime)
            StopEvent().Wait(kWaitForever);  // the recording has ended; the owner will stop the thread
        else if (NextBuffer(index) && TakeBuffer(index))
            index = (index + 1) % LWaveIn::kBuffers;
    }
    return index;
}

bool LSoundRecorder::NextBuffer(size_t index) {
    if (!m_waveIn.IsDone(index)) {
        m_bufferDone.Reset();
        // A buffer that returned before the reset has lost its signal.
        if (!m_waveIn.IsDone(index)) m_bufferDone.WaitEither(StopEvent(), kBufferTimeoutMs);
    }
    if (m_waveIn.IsDone(index)) {
        m_lastBufferTick = LTickMs();
        return true;
    }
    if (LTickMs() - m_lastBufferTick > kDeviceLostMs) {
        LTrace("LSoundRecorder::ThreadFunction the device returns no buffers");
        EndBecause(Ending::DeviceLost);
    }
    return false;
}

bool LSoundRecorder::TakeBuffer(size_t index) {
    Convert(index);
    // The buffer goes back first: the ring has only three seconds, and the disk may be slow.
    if (!m_waveIn.Queue(index)) EndBecause(Ending::DeviceLost);
    if (!m_block.empty()) m_gate.Take(m_block);
    if (m_gate.SinkFailed())
        EndBecause(Ending::WriteError);
    else if (m_gate.MaxTimeReached() && m_ending == Ending::Stopped)
        EndBecause(Ending::MaxTime);
    Publish();
    return true;
}

// Takes the audio that the device had recorded when it was reset: whole buffers not yet looked at, and the
// beginning of one.
void LSoundRecorder::Drain(size_t index) {
    for (size_t i = 0; i < LWaveIn::kBuffers; ++i, index = (index + 1) % LWaveIn::kBuffers) {
        if (!m_waveIn.IsDone(index)) continue;
        Convert(index);
        if (!m_block.empty()) m_gate.TakeLate(m_block);
    }
}

void LSoundRecorder::Convert(size_t index) {
    const auto samples = m_waveIn.Samples(index);
    m_block.resize(samples.size() / m_levelChannels * m_levelChannels);
    Kernels().fromPcm16(reinterpret_cast<const uint8_t*>(samples.data()), m_block.data(), m_block.size());
}

void LSoundRecorder::Publish() {
    for (uint8_t i = 0; i < m_levelChannels; ++i) m_levels[i] = m_gate.LevelDb(i);
    m_lastLoudMs = m_gate.LastLoudMs();
    if (m_state.exchange(m_gate.GetState()) != m_gate.GetState()) m_stateChanged = true;
    m_levelChanged = true;
    m_window.Post();
}

void LSoundRecorder::EndBecause(Ending ending) {
    m_ending = ending;
    m_stopRequested = true;
    m_window.Post();
}
