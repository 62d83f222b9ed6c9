#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "audio/stream/LSoundSource.h"

// The contents of one device buffer, ready to be queued.
struct PlayBlock {
    std::vector<int16_t> samples;
    std::vector<int8_t> levels;  // of each channel, in dB
    int32_t endFrame = 0;        // position in the material behind the last sample
};

// The material of a playback: the owner's source, at a speed, limited to the range of 16 bits.
// Units:  "source frames" are those of the owner's source, "frames" those of the material at its speed.
// Thread: one at a time; Open, SetSpeed and Close on that of the source's owner.
class PlayMaterial {
public:
    static constexpr size_t kGraphBytes = 512;

    // False (traced) when the source cannot be played. percent: 100 is the source's own speed; it is held to
    // the range of LSpeedSource.
    bool Open(const LSoundSource& source, int32_t percent);
    void Close();

    // Continues at another speed from a place of the source.
    bool SetSpeed(int32_t percent, int32_t sourceFrame);
    int32_t SpeedPercent() const { return m_percent; }

    // The outermost stage: its position is the next frame to be read.
    LSoundSourceBase& Top() const { return *m_top; }
    // The frames of one device buffer.
    int32_t BufferFrames() const;
    // The buffers of silence that follow the last sound, at least 300 ms.
    size_t TailBuffers() const;

    void Seek(int32_t sourceFrame);
    void Read(int32_t frames, PlayBlock& block);
    // Repeats a quarter of a buffer from the present place until the buffer is full. The place stays.
    void ReadCue(PlayBlock& block);
    // Writes the peaks, 0 to 255, of 512 consecutive pieces of the source that together last spanMs, from the
    // present place on. The place stays.
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
