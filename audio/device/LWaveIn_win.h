#pragma once

#include <windows.h>

#include <mmsystem.h>

#include <array>
#include <cstdint>
#include <span>

#include "audio/device/LGlobalMemory_win.h"
#include "base/LOwned.h"

// A wave-in device and the ring of buffers that it fills, 16-bit PCM. The buffers hold three seconds: so long
// may a slow disk keep the reader waiting before audio is lost.
// Errors: operations that fail trace and return false.
// Thread: the recorder's.
class LWaveIn {
public:
    static constexpr size_t kBuffers = 30;

    LWaveIn() = default;
    ~LWaveIn() { Close(); }
    LWaveIn(const LWaveIn&) = delete;
    LWaveIn& operator=(const LWaveIn&) = delete;

    // Opens the device, or the platform's default one when it does not open. done is signalled for each
    // buffer.
    bool Open(int32_t device, uint8_t channels, int32_t sampleRate, void* done);
    // Allocates the buffers, 100 ms each, and hands them all to the device.
    bool QueueAll();
    bool Start();

    bool IsDone(size_t index) const;
    // The samples in a buffer that is done.
    std::span<const int16_t> Samples(size_t index) const;
    // Hands a buffer to the device again.
    bool Queue(size_t index);
    // Takes all buffers back, the one that is being filled with what it holds.
    void TakeBack();
    void Close();

private:
    struct DeviceTraits {
        using Type = HWAVEIN;
        static Type None() { return nullptr; }
        static void Close(Type h);
    };

    bool Lock();
    void Release();

    LOwned<DeviceTraits> m_device;
    LGlobalMemory m_memory;
    DWORD m_bufferBytes = 0;
    std::array<WAVEHDR, kBuffers> m_headers{};
};

// The frames of one buffer: 100 ms, 20 to 8192 frames.
int32_t WaveInFrames(int32_t sampleRate);
