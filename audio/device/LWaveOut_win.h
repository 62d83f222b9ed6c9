#pragma once

#include <windows.h>

#include <mmsystem.h>

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "audio/device/LWaveRing_win.h"
#include "audio/device/PlayMaterial.h"
#include "audio/device/PlayQueue.h"
#include "base/LOwned.h"
#include "base/LWaveFileFormat.h"

// The player's notes on the audio in one device buffer, read when that audio has been heard.
class LSoundPlayerWaveHeader {
public:
    static constexpr int32_t kNoAudio = INT32_MIN;  // the position of an empty buffer

    void Set(const PlayBlock& block);
    void SetEmpty() { m_endFrame = kNoAudio; }

    int32_t EndFrame() const { return m_endFrame; }
    uint8_t Channels() const { return static_cast<uint8_t>(m_levels.size()); }
    int8_t LevelDb(uint8_t channel) const { return m_levels[channel]; }

private:
    int32_t m_endFrame = kNoAudio;
    std::vector<int8_t> m_levels;
};

// A wave-out device and its ring of buffers, 16-bit PCM.
// Units:  frames; index is a buffer's place in the ring, below PlayQueue::kBuffers.
// Errors: operations that fail trace and return false.
// Thread: one at a time; the player calls it inside its critical section.
class LWaveOut {
public:
    // The names of the machine's wave-out devices, in the order of their numbers.
    static std::vector<std::string> DeviceNames();

    LWaveOut();
    ~LWaveOut() { Close(); }
    LWaveOut(const LWaveOut&) = delete;
    LWaveOut& operator=(const LWaveOut&) = delete;

    // Opens the device or, when it does not open, the platform's default one, prepares the buffers and pauses
    // it. done, an event, is signalled for each returned buffer.
    bool Open(int32_t device, uint8_t channels, int32_t sampleRate, int32_t bufferFrames, void* done);
    // Takes the buffers back and closes the device. One that keeps its buffers keeps their memory too
    // (LWaveRing).
    void Close();

    bool Pause();
    bool Restart();
    // Stops the sound and takes all buffers back, empty. A paused device may run again afterwards.
    bool Reset();
    bool Write(size_t index, const PlayBlock& block);
    // Repeats a block until the next reset.
    bool WriteLoop(size_t index, const PlayBlock& block);
    // The frames heard since the device was opened or reset.
    bool GetPlayed(int32_t& frames) const;

    // True when the device has played a buffer or never had it.
    bool IsBack(size_t index) const { return m_ring.IsDone(index); }
    const LSoundPlayerWaveHeader& Buffer(size_t index) const { return m_buffers[index]; }

private:
    struct DeviceTraits {
        using Type = HWAVEOUT;
        static Type None() { return nullptr; }
        static void Close(Type h);
    };

    bool OpenDevice(int32_t device, void* done);
    bool CreateRing(DWORD bufferBytes);
    bool WriteLoops(size_t index, const PlayBlock& block, DWORD loops);

    LOwned<DeviceTraits> m_device;
    LWaveRing m_ring;
    std::array<LSoundPlayerWaveHeader, PlayQueue::kBuffers> m_buffers;
    LWaveFileFormat m_format;
};
