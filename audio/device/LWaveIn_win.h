#pragma once

#include <windows.h>

#include <mmsystem.h>

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "audio/device/LWaveRing_win.h"
#include "base/LOwned.h"

// A wave-in device and the ring of buffers that it fills, 16-bit PCM. The buffers hold three seconds: a slow
// disk may keep the reader waiting that long before audio is lost.
// Errors: operations that fail trace and return false.
// Thread: the recorder's.
class LWaveIn {
public:
    static constexpr size_t kBuffers = 30;

    // The names of the machine's wave-in devices, in the order of their numbers.
    static std::vector<std::string> DeviceNames();

    LWaveIn();
    ~LWaveIn() { Close(); }
    LWaveIn(const LWaveIn&) = delete;
    LWaveIn& operator=(const LWaveIn&) = delete;

    // Opens the device or, when it does not open, the platform's default one. done, an event, is signalled
    // for each returned buffer.
    bool Open(int32_t device, uint8_t channels, int32_t sampleRate, void* done);
    // Allocates the buffers, 100 ms each, and hands them all to the device.
    bool QueueAll();
    bool Start();

    bool IsDone(size_t index) const { return m_ring.IsDone(index); }
    // The samples in a buffer that is done.
    std::span<const int16_t> Samples(size_t index) const;
    // Hands a buffer to the device again.
    bool Queue(size_t index);
    // Resets the device: all buffers return, the one that is being filled with its part.
    void TakeBack();
    // Closes the device. One that keeps its buffers keeps their memory too (LWaveRing).
    void Close();

private:
    struct DeviceTraits {
        using Type = HWAVEIN;
        static Type None() { return nullptr; }
        static void Close(Type h);
    };

    LOwned<DeviceTraits> m_device;
    LWaveRing m_ring;
    DWORD m_bufferBytes = 0;
};
