#pragma once

#include "audio/mp3/MP3Kernels.h"
#include "audio/mp3/MP3Layout.h"

// Decodes the frames of one stream, one after the other.
// Errors: a frame that breaks the rules is refused, with a trace; nothing of it is heard. One that needs data
//         from before the start is silence.
class MP3Decoder {
public:
    explicit MP3Decoder(const MP3Kernels& kernels);

    // Once, before the first frame; false when the tables of the bands are wrong.
    bool SetStream(const MP3Header& header) { return m_layout.Build(header); }
    // Forgets the frames so far.
    void Restart();
    // bytes: the frame's side information and main data, of the lengths that the header says, and at least
    // kMP3SpareBytes behind them. samples: interleaved, header.Frames() of each channel.
    bool Decode(const MP3Header& header, const uint8_t* bytes, int32_t* samples);

private:
    static constexpr size_t kMostBefore = 511;  // bytes of earlier frames that a frame can need
    static constexpr size_t kMostInFrame = 2048;

    bool KeepMainData(const MP3Header& header, const uint8_t* bytes);
    bool ReadGranule(const MP3Header& header, size_t g, int32_t& position);
    void Hear(const MP3Header& header, size_t g, int32_t* samples);

    const MP3Kernels& m_kernels;
    MP3Layout m_layout;
    MP3SideInfo m_side;
    MP3ScaleFactors m_factors[2];
    float m_lines[2][kMP3Lines] = {};
    size_t m_ends[2] = {};  // the lines from there on are 0
    float m_slots[2 * kMP3Lines] = {};
    MP3ChannelState m_states[2] = {};
    uint8_t m_data[kMostBefore + kMostInFrame + kMP3SpareBytes] = {};  // main data, of which
    size_t m_before = 0;   // so many bytes belong to earlier frames
    size_t m_present = 0;  // and these are all
};
