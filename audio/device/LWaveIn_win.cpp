#include "audio/device/LWaveIn_win.h"

#include "audio/device/LWaveBuffer.h"
#include "base/LTrace.h"
#include "base/LWaveFileFormat.h"

static bool Fail(std::string_view trace) {
    LTrace(trace);
    return false;
}

void LWaveIn::DeviceTraits::Close(Type h) {
    if (waveInClose(h) != MMSYSERR_NOERROR) LTrace("LSoundRecorder::ThreadFunction waveInClose Failed");
}

static const LWaveRing::Device kRingDevice = {
    .prepare =
        [](void* device, WAVEHDR& header) {
            return waveInPrepareHeader(static_cast<HWAVEIN>(device), &header, sizeof header);
        },
    .unprepare =
        [](void* device, WAVEHDR& header) {
            return waveInUnprepareHeader(static_cast<HWAVEIN>(device), &header, sizeof header);
        },
    .allocFailed = "LSoundRecorder::ThreadFunction() GlobalAlloc FAILED",
    .lockFailed = "LSoundRecorder::ThreadFunction() GlobalLock FAILED",
    .prepareFailed = "LSoundRecorder::ThreadFunction() waveInPrepareHeader FAILED",
    .unprepareWaits = "LSoundRecorder::ThreadFunction() waveInUnprepareHeader wait while WAVERR_STILLPLAYING",
    .unprepareFailed = "LSoundRecorder::ThreadFunction() waveInUnprepareHeader FAILED",
};

std::vector<std::string> LWaveIn::DeviceNames() {
    std::vector<std::string> names;
    const UINT count = waveInGetNumDevs();
    for (UINT device = 0; device < count; ++device) {
        WAVEINCAPSA caps = {};
        waveInGetDevCapsA(device, &caps, sizeof caps);
        names.emplace_back(caps.szPname, strnlen(caps.szPname, sizeof caps.szPname));
    }
    return names;
}

LWaveIn::LWaveIn() : m_ring(kRingDevice) {}

bool LWaveIn::Open(int32_t device, uint8_t channels, int32_t sampleRate, void* done) {
    const LWaveFileFormat format = LWaveFileFormat::Pcm(16, channels, static_cast<uint32_t>(sampleRate));
    const auto* record = reinterpret_cast<const WAVEFORMATEX*>(format.Bytes().data());
    for (const UINT id : {static_cast<UINT>(device), WAVE_MAPPER}) {
        HWAVEIN handle = nullptr;
        if (waveInOpen(&handle, id, record, reinterpret_cast<DWORD_PTR>(done), 0, CALLBACK_EVENT) ==
            MMSYSERR_NOERROR) {
            m_device.Reset(handle);
            m_bufferBytes = static_cast<DWORD>(WaveBufferFrames(sampleRate)) * format.BlockAlign();
            return true;
        }
    }
    return Fail("LSoundRecorder::ThreadFunction waveInOpen Error");
}

bool LWaveIn::QueueAll() {
    waveInStop(m_device.Get());
    if (!m_ring.Create(m_device.Get(), kBuffers, m_bufferBytes)) return false;
    for (size_t i = 0; i < kBuffers; ++i)
        if (!Queue(i)) return false;
    return true;
}

bool LWaveIn::Start() {
    return waveInStart(m_device.Get()) == MMSYSERR_NOERROR ||
           Fail("LSoundRecorder::ThreadFunction waveInStart Failed");
}

std::span<const int16_t> LWaveIn::Samples(size_t index) const {
    const WAVEHDR& header = m_ring[index];
    const DWORD bytes = header.dwBytesRecorded < m_bufferBytes ? header.dwBytesRecorded : m_bufferBytes;
    return {reinterpret_cast<const int16_t*>(header.lpData), bytes / sizeof(int16_t)};
}

bool LWaveIn::Queue(size_t index) {
    m_ring[index].dwBytesRecorded = 0;  // the device may return it without a touch
    return waveInAddBuffer(m_device.Get(), &m_ring[index], sizeof(WAVEHDR)) == MMSYSERR_NOERROR ||
           Fail("LSoundRecorder::ThreadFunction() waveInAddBuffer FAILED");
}

void LWaveIn::TakeBack() {
    if (waveInReset(m_device.Get()) != MMSYSERR_NOERROR)
        LTrace("LSoundRecorder::ThreadFunction() waveInReset Failed");
}

void LWaveIn::Close() {
    if (!m_device) return;
    if (m_ring) TakeBack();  // buffers are still out when queueing failed half-way
    m_ring.Release(m_device.Get());
    m_device.Reset();
}
