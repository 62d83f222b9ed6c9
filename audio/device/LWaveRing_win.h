#pragma once

#include <windows.h>

#include <mmsystem.h>

#include <cstddef>
#include <cstdint>
#include <span>

#include "audio/device/LGlobalMemory_win.h"

// The ring of buffers that a wave device fills or plays: their headers and their bytes, in one block of memory,
// of which the device reads and writes parts while it owns a buffer.
// Errors: operations that fail trace and return false.
// Thread: one at a time.
class LWaveRing {
public:
    // How a kind of device takes a buffer over and gives it back, and what is traced when it does not.
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
    // To be called once the device has been reset. It may keep buffers for half a second; one that keeps them
    // longer, or fails to give them back, keeps the memory for good: freed under it, it would write into
    // whatever came next.
    void Release(void* device);

    // Whether there is anything that the device may own.
    explicit operator bool() const { return !m_headers.empty(); }
    size_t Size() const { return m_headers.size(); }
    WAVEHDR& operator[](size_t index) { return m_headers[index]; }
    const WAVEHDR& operator[](size_t index) const { return m_headers[index]; }
    DWORD BufferBytes() const { return m_bufferBytes; }
    // Whether the device has given the buffer back.
    bool IsDone(size_t index) const;

private:
    bool GiveBack(void* device, WAVEHDR& header, uint32_t deadlineMs);

    const Device& m_device;
    LGlobalMemory m_memory;
    std::span<WAVEHDR> m_headers;
    DWORD m_bufferBytes = 0;
};
