#pragma once

#include <windows.h>

#include <mmsystem.h>

#include <array>
#include <cstdint>
#include <memory>

#include "audio/device/LGlobalMemory_win.h"
#include "audio/device/PlayMaterial.h"
#include "audio/device/PlayQueue.h"
#include "base/LOwned.h"
#include "base/LWaveFileFormat.h"

// One of the device's buffers: the device's header, and what the player wants to know of the audio in it when
// it has been heard.
class LSoundPlayerWaveHeader {
public:
    static constexpr int32_t kNoAudio = INT32_MIN;  // the position of an empty buffer

    // memory: the buffer's bytes, which outlive the header.
    bool Create(HWAVEOUT device, char* memory, DWORD bytes);
    // Waits for a buffer that the device still plays until the tick count deadlineMs; false when it then
    // still belongs to the device.
    bool Destroy(HWAVEOUT device, uint32_t deadlineMs);

    // Hands the block to the device. loops: how often it is played.
    bool Write(HWAVEOUT device, const PlayBlock& block, DWORD loops);
    void SetEmpty() { m_endFrame = kNoAudio; }
    bool IsBack() const;

    int32_t EndFrame() const { return m_endFrame; }
    uint8_t Channels() const { return static_cast<uint8_t>(m_levels.size()); }
    int8_t LevelDb(uint8_t channel) const { return m_levels[channel]; }

private:
    WAVEHDR m_header = {};
    DWORD m_bytes = 0;
    int32_t m_endFrame = kNoAudio;
    std::vector<int8_t> m_levels;
};

// A wave-out device and its ring of buffers, 16-bit PCM.
// Errors: operations that fail trace and return false.
// Thread: one at a time; the player calls it inside its critical section.
class LWaveOut {
public:
    LWaveOut() = default;
    ~LWaveOut() { Close(); }
    LWaveOut(const LWaveOut&) = delete;
    LWaveOut& operator=(const LWaveOut&) = delete;

    // Opens the device, or the platform's default one when it does not open, and prepares the buffers.
    // It is paused. done is signalled for each buffer that comes back.
    bool Open(int32_t device, uint8_t channels, int32_t sampleRate, int32_t bufferFrames, void* done);
    // Takes the buffers back. A device that keeps them past half a second keeps them for good: their
    // memory is given up rather than freed under it.
    void Close();

    bool Pause();
    bool Restart();
    // Stops the sound and takes all buffers back, empty. A paused device need not be paused any more.
    bool Reset();
    bool Write(size_t index, const PlayBlock& block);
    // Repeats a block until the next reset.
    bool WriteLoop(size_t index, const PlayBlock& block);
    // The frames heard since the device was opened or reset.
    bool GetPlayed(int32_t& frames) const;

    const LSoundPlayerWaveHeader& Buffer(size_t index) const { return m_ring->headers[index]; }

private:
    struct DeviceTraits {
        using Type = HWAVEOUT;
        static Type None() { return nullptr; }
        static void Close(Type h);
    };
    // What the device writes to and reads from while it holds a buffer.
    struct Ring {
        std::array<LSoundPlayerWaveHeader, PlayQueue::kBuffers> headers;
        LGlobalMemory memory;
    };

    bool OpenDevice(int32_t device, void* done);
    bool CreateRing(DWORD bufferBytes);

    LOwned<DeviceTraits> m_device;
    std::unique_ptr<Ring> m_ring;
    LWaveFileFormat m_format;
};
