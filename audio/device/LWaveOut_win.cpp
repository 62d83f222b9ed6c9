#include "audio/device/LWaveOut_win.h"

#include <algorithm>

#include "base/LTrace.h"

static constexpr DWORD kLoopForever = 0x7FFFFFFF;  // repeats: for a buffer of 100 ms, years

static bool Fail(std::string_view trace) {
    LTrace(trace);
    return false;
}

static bool Succeeded(MMRESULT result, std::string_view trace) {
    return result == MMSYSERR_NOERROR || Fail(trace);
}

static const LWaveRing::Device kRingDevice = {
    .prepare =
        [](void* device, WAVEHDR& header) {
            return waveOutPrepareHeader(static_cast<HWAVEOUT>(device), &header, sizeof header);
        },
    .unprepare =
        [](void* device, WAVEHDR& header) {
            return waveOutUnprepareHeader(static_cast<HWAVEOUT>(device), &header, sizeof header);
        },
    .allocFailed = "LSoundPlayer::Start GlobalAlloc FAILED",
    .lockFailed = "LSoundPlayer::Start GlobalLock FAILED",
    .prepareFailed = "LSoundPlayerWaveHeader::Create waveOutPrepareHeader ERROR",
    .unprepareWaits =
        "LSoundPlayerWaveHeader::Destroy waveOutUnprepareHeader failed wait while WAVERR_STILLPLAYING",
    .unprepareFailed = "LSoundPlayerWaveHeader::Destroy waveOutUnprepareHeader TIMEOUT",
};

void LSoundPlayerWaveHeader::Set(const PlayBlock& block) {
    m_endFrame = block.endFrame;
    m_levels = block.levels;
}

std::vector<std::string> LWaveOut::DeviceNames() {
    std::vector<std::string> names;
    const UINT count = waveOutGetNumDevs();
    for (UINT device = 0; device < count; ++device) {
        WAVEOUTCAPSA caps = {};
        waveOutGetDevCapsA(device, &caps, sizeof caps);
        names.emplace_back(caps.szPname, strnlen(caps.szPname, sizeof caps.szPname));
    }
    return names;
}

LWaveOut::LWaveOut() : m_ring(kRingDevice) {}

void LWaveOut::DeviceTraits::Close(Type h) {
    Succeeded(waveOutClose(h), "LSoundPlayer::Stop waveOutClose Error");
}

bool LWaveOut::Open(int32_t device, uint8_t channels, int32_t sampleRate, int32_t bufferFrames, void* done) {
    Close();
    m_format = LWaveFileFormat::Pcm(16, channels, static_cast<uint32_t>(sampleRate));
    if (OpenDevice(device, done) && Pause() &&
        CreateRing(static_cast<DWORD>(bufferFrames) * m_format.BlockAlign()))
        return true;
    Close();
    return false;
}

bool LWaveOut::OpenDevice(int32_t device, void* done) {
    const auto* record = reinterpret_cast<const WAVEFORMATEX*>(m_format.Bytes().data());
    for (const UINT id : {static_cast<UINT>(device), WAVE_MAPPER}) {
        HWAVEOUT handle = nullptr;
        if (waveOutOpen(&handle, id, record, reinterpret_cast<DWORD_PTR>(done), 0, CALLBACK_EVENT) ==
            MMSYSERR_NOERROR) {
            m_device.Reset(handle);
            return true;
        }
    }
    return Fail("LSoundPlayer::Start waveOutOpen Error");
}

bool LWaveOut::CreateRing(DWORD bufferBytes) {
    if (!m_ring.Create(m_device.Get(), PlayQueue::kBuffers, bufferBytes)) return false;
    for (size_t i = 0; i < m_ring.Size(); ++i) m_ring[i].dwFlags |= WHDR_DONE;
    return true;
}

void LWaveOut::Close() {
    if (!m_device) return;
    if (m_ring) Reset();
    m_ring.Release(m_device.Get());
    m_device.Reset();
}

bool LWaveOut::Pause() {
    return Succeeded(waveOutPause(m_device.Get()), "LSoundPlayer::Pause waveOutPause ERROR");
}

bool LWaveOut::Restart() {
    return Succeeded(waveOutRestart(m_device.Get()), "LSoundPlayer::Play waveOutRestart ERROR");
}

bool LWaveOut::Reset() {
    const MMRESULT result = waveOutReset(m_device.Get());
    for (LSoundPlayerWaveHeader& buffer : m_buffers) buffer.SetEmpty();
    return result == MMSYSERR_NOERROR;
}

bool LWaveOut::Write(size_t index, const PlayBlock& block) {
    return WriteLoops(index, block, 1);
}

bool LWaveOut::WriteLoop(size_t index, const PlayBlock& block) {
    return WriteLoops(index, block, kLoopForever);
}

bool LWaveOut::WriteLoops(size_t index, const PlayBlock& block, DWORD loops) {
    WAVEHDR& header = m_ring[index];
    const DWORD bytes =
        std::min(m_ring.BufferBytes(), static_cast<DWORD>(block.samples.size() * sizeof(int16_t)));
    CopyMemory(header.lpData, block.samples.data(), bytes);
    header.dwBufferLength = bytes;
    header.dwFlags &= ~static_cast<DWORD>(WHDR_DONE | WHDR_BEGINLOOP | WHDR_ENDLOOP);
    if (loops > 1) header.dwFlags |= WHDR_BEGINLOOP | WHDR_ENDLOOP;
    header.dwLoops = loops;
    m_buffers[index].Set(block);
    if (Succeeded(waveOutWrite(m_device.Get(), &header, sizeof header),
                  "LSoundPlayerWaveHeader::Write waveOutWrite ERROR"))
        return true;
    header.dwFlags |= WHDR_DONE;
    m_buffers[index].SetEmpty();
    return false;
}

// A device may refuse the unit that it is asked for and answer in another one.
bool LWaveOut::GetPlayed(int32_t& frames) const {
    MMTIME time = {};
    time.wType = TIME_SAMPLES;
    if (waveOutGetPosition(m_device.Get(), &time, sizeof time) != MMSYSERR_NOERROR) return false;
    if (time.wType == TIME_SAMPLES)
        frames = static_cast<int32_t>(time.u.sample);
    else if (time.wType == TIME_BYTES)
        frames = static_cast<int32_t>(time.u.cb / m_format.BlockAlign());
    else
        return false;
    return frames >= 0;
}
