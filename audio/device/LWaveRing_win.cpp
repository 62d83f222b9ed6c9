#include "audio/device/LWaveRing_win.h"

#include <algorithm>

#include "base/LTime.h"
#include "base/LTrace.h"

// One allocation holds all headers and all bytes, so that memory the device will not release is given up as a
// whole and by a known amount. Freeing it was rejected: a driver writes into a buffer that it has not
// returned, even when those bytes belong to something else by then. Waiting for it without limit would hang
// the program on a device that was unplugged.
// Recorder and player share the class; they differ in the calls and trace lines of LWaveRing::Device.

static constexpr uint32_t kReleaseTimeoutMs = 500;  // for the whole ring
static constexpr uint32_t kReleaseRetryMs = 50;

static bool Fail(const char* trace) {
    LTrace(trace);
    return false;
}

bool LWaveRing::Create(void* device, size_t buffers, DWORD bufferBytes) {
    m_bufferBytes = bufferBytes;
    m_memory.Reset(
        GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, buffers * (sizeof(WAVEHDR) + size_t{bufferBytes})));
    if (!m_memory) return Fail(m_device.allocFailed);
    void* const memory = GlobalLock(m_memory.Get());
    if (!memory) return Fail(m_device.lockFailed);
    m_headers = {static_cast<WAVEHDR*>(memory), buffers};
    char* bytes = static_cast<char*>(memory) + m_headers.size_bytes();
    for (WAVEHDR& header : m_headers) {
        header.lpData = bytes;
        header.dwBufferLength = bufferBytes;
        bytes += bufferBytes;
    }
    return std::ranges::all_of(m_headers, [&](WAVEHDR& header) {
        return m_device.prepare(device, header) == MMSYSERR_NOERROR || Fail(m_device.prepareFailed);
    });
}

void LWaveRing::Release(void* device) {
    const uint32_t deadlineMs = LTickMs() + kReleaseTimeoutMs;
    const bool areFree =
        std::ranges::all_of(m_headers, [&](WAVEHDR& header) { return GiveBack(device, header, deadlineMs); });
    if (areFree && !m_headers.empty())
        GlobalUnlock(m_memory.Get());
    else if (!areFree)
        m_memory.Release();
    m_memory.Reset();
    m_headers = {};
}

bool LWaveRing::GiveBack(void* device, WAVEHDR& header, uint32_t deadlineMs) {
    if (!(header.dwFlags & WHDR_PREPARED)) return true;
    header.dwBufferLength = m_bufferBytes;  // as it was prepared
    for (;;) {
        const MMRESULT result = m_device.unprepare(device, header);
        if (result == MMSYSERR_NOERROR) return true;
        const bool isLate = static_cast<int32_t>(deadlineMs - LTickMs()) <= 0;
        if (result != WAVERR_STILLPLAYING || isLate) return Fail(m_device.unprepareFailed);
        LTrace(m_device.unprepareWaits);
        Sleep(kReleaseRetryMs);
    }
}

bool LWaveRing::IsDone(size_t index) const {
    // The driver changes the flags from outside the program, so the compiler must read them each time.
    return (*const_cast<const volatile DWORD*>(&m_headers[index].dwFlags) & WHDR_DONE) != 0;
}
