#pragma once

#include <cstddef>
#include <cstdint>

#include "base/LStream.h"

// The header of a frame of MPEG audio, Layer III.
// Units:  bit rates in bits per second; sizes in bytes.
struct MP3Header {
    enum Version : uint8_t { kMpeg1, kMpeg2, kMpeg25 };
    enum Mode : uint8_t { kStereo, kJointStereo, kDualChannel, kSingleChannel };

    uint8_t version = kMpeg1;
    bool hasCheckSum = false;
    int32_t bitRate = 0;
    uint8_t frequencyIndex = 0;  // 0 to 2
    int32_t sampleRate = 0;
    uint8_t padding = 0;
    uint8_t mode = kStereo;
    uint8_t modeExtension = 0;

    // Searches a stream for the next header and reads it, with the check sum behind it, which is not checked.
    // Skips at most 16384 bytes. Free formats have no header that is found.
    // Errors: false at the end of the stream, or when no header was found.
    bool ReadHeader(LReadStream& stream);
    // Whether four bytes are a header.
    bool Accept(const uint8_t* bytes);

    uint8_t Channels() const { return mode == kSingleChannel ? 1 : 2; }
    bool IsMidSide() const { return mode == kJointStereo && (modeExtension & 2) != 0; }
    bool IsIntensity() const { return mode == kJointStereo && (modeExtension & 1) != 0; }
    size_t RateIndex() const { return size_t{version} * 3 + frequencyIndex; }
    int32_t Granules() const { return version == kMpeg1 ? 2 : 1; }
    int32_t Frames() const { return Granules() * 576; }  // of sound
    size_t HeaderBytes() const { return hasCheckSum ? 6 : 4; }
    size_t SideInfoBytes() const;
    // Of the whole frame, and of what follows the side information.
    size_t FrameBytes() const;
    size_t MainDataBytes() const;
};
