#include "audio/device/LWaveIn_win.h"

#include "audio/stream/LSample.h"
#include "base/LArith.h"
#include "base/LTrace.h"
#include "base/LWaveFileFormat.h"

static bool Fail(std::string_view trace) {
    LTrace(trace);
    return false;
}

int32_t WaveInFrames(int32_t sampleRate) {
    return Clamp(sampleRate / 10, 20, kBlockFrames);
}

void LWaveIn::DeviceTraits::Close(Type h) {
    if (waveInClose(h) != MMSYSERR_NOERROR) LTrace("LSoundRecorder::ThreadFunction waveInClose Failed");
}

bool LWaveIn::Open(int32_t device, uint8_t channels, int32_t sampleRate, void* done) {
    const LWaveFileFormat format = LWaveFileFormat::Pcm(16, channels, static_cast<uint32_t>(sampleRate));
    const auto* record = reinterpret_cast<const WAVEFORMATEX*>(format.Bytes().data());
    for (const UINT id : {static_cast<UINT>(device), WAVE_MAPPER}) {
        HWAVEIN handle = nullptr;
        if (waveInOpen(&handle, id, record, reinterpret_cast<DWORD_PTR>(done), 0, CALLBACK_EVENT) ==
            MMSYSERR_NOERROR) {
            m_device.Reset(handle);
            m_bufferBytes = static_cast<DWORD>(WaveInFrames(sampleRate)) * format.BlockAlign();
            return true;
        }
    }
    return Fail("LSoundRecorder::ThreadFunction waveInOpen Error");
}

bool LWaveIn::QueueAll() {
    waveInStop(m_device.Get());
    if (!Lock()) return false;
    for (size_t i = 0; i < kBuffers; ++i) {
        if (waveInPrepareHeader(m_device.Get(), &m_headers[i], sizeof(WAVEHDR)) != MMSYSERR_NOERROR)
            return Fail("LSoundRecorder::ThreadFunction() waveInPrepareHeader FAILED");
        if (!Queue(i)) return false;
    }
    return true;
}

bool LWaveIn::Lock() {
    m_memory.Reset(GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, m_bufferBytes * kBuffers));
    if (!m_memory) return Fail("LSoundRecorder::ThreadFunction() GlobalAlloc FAILED");
    char* memory = static_cast<char*>(GlobalLock(m_memory.Get()));
    if (!memory) return Fail("LSoundRecorder::ThreadFunction() GlobalLock FAILED");
    for (size_t i = 0; i < kBuffers; ++i) {
        m_headers[i] = {};
        m_headers[i].lpData = memory + i * m_bufferBytes;
        m_headers[i].dwBufferLength = m_bufferBytes;
    }
    return true;
}

bool LWaveIn::Start() {
    return waveInStart(m_device.Get()) == MMSYSERR_NOERROR ||
           Fail("LSoundRecorder::ThreadFunction waveInStart Failed");
}

bool LWaveIn::IsDone(size_t index) const {
    // The device changes the flags behind the compiler's back.
    return (*const_cast<const volatile DWORD*>(&m_headers[index].dwFlags) & WHDR_DONE) != 0;
}

std::span<const int16_t> LWaveIn::Samples(size_t index) const {
    const WAVEHDR& header = m_headers[index];
    const DWORD bytes = header.dwBytesRecorded < m_bufferBytes ? header.dwBytesRecorded : m_bufferBytes;
    return {reinterpret_cast<const int16_t*>(header.lpData), bytes / sizeof(int16_t)};
}

bool LWaveIn::Queue(size_t index) {
    m_headers[index].dwBytesRecorded = 0;  // a buffer that the device never touches must not count twice
    return waveInAddBuffer(m_device.Get(), &m_headers[index], sizeof(WAVEHDR)) == MMSYSERR_NOERROR ||
           Fail("LSoundRecorder::ThreadFunction() waveInAddBuffer FAILED");
}

void LWaveIn::TakeBack() {
    if (waveInReset(m_device.Get()) != MMSYSERR_NOERROR)
        LTrace("LSoundRecorder::ThreadFunction() waveInReset Failed");
}

void LWaveIn::Release() {
    for (WAVEHDR& header : m_headers) {
        if (header.dwFlags & WHDR_PREPARED) waveInUnprepareHeader(m_device.Get(), &header, sizeof(WAVEHDR));
        header = {};
    }
    if (m_memory) GlobalUnlock(m_memory.Get());
    m_memory.Reset();
}

void LWaveIn::Close() {
    if (!m_device) return;
    if (m_memory) TakeBack();  // not all need have come back when the queueing failed half-way
    Release();
    m_device.Reset();
}
