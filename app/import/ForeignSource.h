#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "audio/stream/LSoundSource.h"

// The sound that a library of another program gives out, block by block.
class ForeignPcm {
public:
    virtual ~ForeignPcm() = default;
    // Fills the buffer with up to so many frames of 16 bits and returns their count; 0 at the end, below 0
    // after a failure.
    virtual int32_t Read(int16_t* samples, int32_t frames) = 0;
};

// What the library says about it; frames: the length, 0 where it does not know.
struct ForeignFormat {
    int32_t sampleRate = 0;
    int32_t channels = 0;
    int32_t frames = 0;
};

// Such sound as a source. Nothing that the library says is believed: a format that cannot be sets the error
// bit, a count beyond what was asked for ends the material, and its length only serves to show progress.
// Goes forward only: a Seek ends the material.
// Errors: IsWhole() is false when the library failed.
// Thread: one at a time.
class ForeignSource final : public LSoundSourceBase {
public:
    ForeignSource(std::unique_ptr<ForeignPcm> pcm, const ForeignFormat& format);

    void Read(int32_t* samples, int32_t frames) override;
    int32_t GetPosition() const override { return m_position; }
    int32_t GetLength() const override;
    void Seek(int32_t frame) override;
    bool IsWhole() const override { return m_isWhole; }

private:
    int32_t Pull(int32_t* samples, int32_t frames);

    std::unique_ptr<ForeignPcm> m_pcm;
    std::vector<int16_t> m_block;
    int32_t m_told;  // frames
    int32_t m_position = 0;
    int32_t m_end = -1;  // frame; -1: unknown
    bool m_isWhole = false;
};
