#include "audio/device/LWaveOut_win.h"

#include <algorithm>

#include "base/LTime.h"
#include "base/LTrace.h"

static constexpr uint32_t kReleaseTimeoutMs = 500;
static constexpr uint32_t kReleaseRetryMs = 50;
static constexpr DWORD kLoopForever = 0x7FFFFFFF;

static bool Fail(std::string_view trace) {
    LTrace(trace);
    return false;
}

static bool Succeeded(MMRESULT result, std::string_view trace) {
    return result == MMSYSERR_NOERROR || Fail(trace);
}

bool LSoundPlayerWaveHeader::Create(HWAVEOUT device, char* memory, DWORD bytes) {
    m_header = {};
    m_header.lpData = memory;
    m_header.dwBufferLength = m_bytes = bytes;
    if (!Succeeded(waveOutPrepareHeader(device, &m_header, sizeof m_header),
                   "LSoundPlayerWaveHeader::Create waveOutPrepareHeader ERROR"))
        return false;
    m_header.dwFlags |= WHDR_DONE;
    return true;
}

bool LSoundPlayerWaveHeader::Destroy(HWAVEOUT device, uint32_t deadlineMs) {
    if (!(m_header.dwFlags & WHDR_PREPARED)) return true;
    m_header.dwBufferLength = m_bytes;
    while (waveOutUnprepareHeader(device, &m_header, sizeof m_header) == WAVERR_STILLPLAYING) {
        if (static_cast<int32_t>(deadlineMs - LTickMs()) <= 0)
            return Fail("LSoundPlayerWaveHeader::Destroy waveOutUnprepareHeader TIMEOUT");
        LTrace(
            "LSoundPlayerWaveHeader::Destroy waveOutUnprepareHeader failed wait while WAVERR_STILLPLAYING");
        Sleep(kReleaseRetryMs);
    }
    return true;
}

bool LSoundPlayerWaveHeader::Write(HWAVEOUT device, const PlayBlock& block, DWORD loops) {
    const DWORD bytes = std::min(m_bytes, static_cast<DWORD>(block.samples.size() * sizeof(int16_t)));
    CopyMemory(m_header.lpData, block.samples.data(), bytes);
    m_header.dwBufferLength = bytes;
    m_header.dwFlags &= ~static_cast<DWORD>(WHDR_DONE | WHDR_BEGINLOOP | WHDR_ENDLOOP);
    if (loops > 1) m_header.dwFlags |= WHDR_BEGINLOOP | WHDR_ENDLOOP;
    m_header.dwLoops = loops;
    m_endFrame = block.endFrame;
    m_levels = block.levels;
    if (Succeeded(waveOutWrite(device, &m_header, sizeof m_header),
                  "LSoundPlayerWaveHeader::Write waveOutWrite ERROR"))
        return true;
    m_header.dwFlags |= WHDR_DONE;
    SetEmpty();
    return false;
}

bool LSoundPlayerWaveHeader::IsBack() const {
    // The device changes the flags behind the compiler's back.
    return (*const_cast<const volatile DWORD*>(&m_header.dwFlags) & WHDR_DONE) != 0;
}

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
    m_ring = std::make_unique<Ring>();
    m_ring->memory.Reset(GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, bufferBytes * PlayQueue::kBuffers));
    if (!m_ring->memory) return Fail("LSoundPlayer::Start GlobalAlloc FAILED");
    char* memory = static_cast<char*>(GlobalLock(m_ring->memory.Get()));
    if (!memory) return Fail("LSoundPlayer::Start GlobalLock FAILED");
    for (LSoundPlayerWaveHeader& header : m_ring->headers) {
        if (!header.Create(m_device.Get(), memory, bufferBytes)) return false;
        memory += bufferBytes;
    }
    return true;
}

void LWaveOut::Close() {
    if (!m_device) return;
    if (m_ring) {
        Reset();
        const uint32_t deadlineMs = LTickMs() + kReleaseTimeoutMs;
        const bool areFree = std::ranges::all_of(m_ring->headers, [&](LSoundPlayerWaveHeader& header) {
            return header.Destroy(m_device.Get(), deadlineMs);
        });
        if (!areFree)
            static_cast<void>(m_ring.release());  // the device may still write to it
        else if (m_ring->memory)
            GlobalUnlock(m_ring->memory.Get());
        m_ring.reset();
    }
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
    for (LSoundPlayerWaveHeader& header : m_ring->headers) header.SetEmpty();
    return result == MMSYSERR_NOERROR;
}

bool LWaveOut::Write(size_t index, const PlayBlock& block) {
    return m_ring->headers[index].Write(m_device.Get(), block, 1);
}

bool LWaveOut::WriteLoop(size_t index, const PlayBlock& block) {
    return m_ring->headers[index].Write(m_device.Get(), block, kLoopForever);
}

// Devices may refuse the unit that they are asked for and answer in another one.
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
