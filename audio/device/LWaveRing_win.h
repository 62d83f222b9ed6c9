#pragma once

#include <windows.h>

#include <mmsystem.h>

#include <cstddef>
#include <cstdint>
#include <span>

#include "audio/device/LGlobalMemory_win.h"

// The ring of buffers that a wave device fills or plays: their headers and their bytes, in one block of
// global memory. The device reads and writes a buffer, header included, while it owns it.
// Units:  bytes.
// Errors: operations that fail trace and return false.
// Thread: one at a time.
class LWaveRing {
public:
    // The calls by which a kind of device takes over a buffer and gives it back, and the trace lines of their
    // failures.
    struct Device {
        MMRESULT (*prepare)(void* device, WAVEHDR& header);
        MMRESULT (*unprepare)(void* device, WAVEHDR& header);
        const char* allocFailed;
        const char* lockFailed;
        const char* prepareFailed;
        const char* unprepareWaits;
        const char* unprepareFailed;
    };

    explicit LWaveRing(const Device& device) : m_device(device) {}

    // Allocates the buffers, bufferBytes (even) each and all zero, and prepares them.
    bool Create(void* device, size_t buffers, DWORD bufferBytes);
    // Takes all buffers back and frees the memory; call it once the device has been reset. A device may keep
    // buffers for half a second more. The memory of one that keeps them longer, or fails to give them back,
    // is given up for good: freed, it would be written into by the device while it belongs to something else.
    void Release(void* device);

    // True while the ring has buffers, which the device may own.
    explicit operator bool() const { return !m_headers.empty(); }
    size_t Size() const { return m_headers.size(); }
    WAVEHDR& operator[](size_t index) { return m_headers[index]; }
    const WAVEHDR& operator[](size_t index) const { return m_headers[index]; }
    DWORD BufferBytes() const { return m_bufferBytes; }
    // True when the device has given the buffer back.
    bool IsDone(size_t index) const;

private:
    bool GiveBack(void* device, WAVEHDR& header, uint32_t deadlineMs);

    const Device& m_device;
    LGlobalMemory m_memory;
    std::span<WAVEHDR> m_headers;
    DWORD m_bufferBytes = 0;
};
