#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "audio/stream/LSoundSource.h"

// The contents of one device buffer.
struct PlayBlock {
    std::vector<int16_t> samples;
    std::vector<int8_t> levels;  // of each channel, in dB
    int32_t endFrame = 0;        // of the material, behind the last sample
};

// What the player plays: the owner's source, at a speed, limited to what 16 bits hold.
// Units:  "source frames" are those of the owner's source, "frames" those of what is played.
// Thread: one at a time; Open, SetSpeed and Close on that of the source's owner.
class PlayMaterial {
public:
    static constexpr size_t kGraphBytes = 512;

    // False (traced) when the source cannot be played. percent: 100 is the source's own speed; it is held to
    // what LSpeedSource can do.
    bool Open(const LSoundSource& source, int32_t percent);
    void Close();

    // Goes on at another speed from a place of the source.
    bool SetSpeed(int32_t percent, int32_t sourceFrame);
    int32_t SpeedPercent() const { return m_percent; }

    // What is read next.
    LSoundSourceBase& Top() const { return *m_top; }
    // Of one device buffer.
    int32_t BufferFrames() const;
    // The buffers of silence that follow the last sound, at least 300 ms.
    size_t TailBuffers() const;

    void Seek(int32_t sourceFrame);
    void Read(int32_t frames, PlayBlock& block);
    // A quarter of a buffer at the present place, repeated until the buffer is full. The place stays.
    void ReadCue(PlayBlock& block);
    // The peaks of 512 consecutive pieces of the source that together last spanMs, from the present place,
    // 0 to 255. The place stays.
    void ReadCueGraph(int32_t spanMs, std::span<uint8_t, kGraphBytes> graph);

    // The source's frame that is heard at a frame; never beyond the source's length.
    int32_t ToSourceFrame(int32_t frame) const;
    int32_t FromSourceFrame(int32_t sourceFrame) const;

private:
    bool Wrap(int32_t percent);
    void ReadSamples(int32_t frames, PlayBlock& block);
    void Convert(int32_t frames, PlayBlock& block) const;

    LSoundSource m_source;
    LSoundSource m_top;
    int32_t m_percent = 100;
    std::vector<int32_t> m_samples;
};
