#pragma once

#include <span>

#include "audio/mp3/MP3BitReader.h"
#include "audio/mp3/MP3Header.h"

// Bytes behind a buffer that MP3BitReader may run into: the longest band, in the longest codes.
constexpr size_t kMP3SpareBytes = 1024;

// What a frame says of one granule of one channel.
struct MP3Granule {
    uint16_t dataBits = 0;   // scale factors and codes
    uint16_t bigValues = 0;  // pairs
    uint8_t globalGain = 0;
    uint16_t scaleFactorCompress = 0;
    bool isSwitched = false;
    uint8_t blockType = 0;  // 2: short
    bool isMixed = false;
    uint8_t tables[3] = {};
    uint8_t subblockGains[3] = {};  // times 4, as exponents of the table of scale factors
    uint16_t regionEnds[2] = {};    // lines
    bool hasPretab = false;
    uint8_t scaleFactorShift = 0;
    uint8_t quadTable = 0;
    bool isIntensityHalved = false;  // its factors are powers of the root of 1/2, not of its root

    bool IsShort() const { return blockType == 2; }
};

struct MP3SideInfo {
    uint16_t mainDataBegin = 0;            // bytes before this frame's own
    uint8_t scaleFactorSelection[2] = {};  // 4 bits: groups taken over from the first granule
    MP3Granule granules[2][2] = {};        // granule, channel

    // bytes: as many as the header says, and 8 behind them that may be read.
    void Read(const MP3Header& header, const uint8_t* bytes);
};

// The scale factors of a channel, band by band; those of short bands window by window. The bands behind the
// last one have 0.
struct MP3ScaleFactors {
    static constexpr size_t kMost = 40;
    uint8_t values[kMost] = {};
    // Positions of intensity from here on mean: no intensity in this band.
    uint8_t illegal[kMost] = {};

    // The first granule's values are kept where the second takes them over.
    void Read(MP3BitReader& bits, const MP3Header& header, const MP3Granule& granule, uint8_t selection,
              bool isIntensityRight);

private:
    void Read1(MP3BitReader& bits, const MP3Granule& granule, uint8_t selection);
    void Read2(MP3BitReader& bits, const MP3Granule& granule, bool isIntensityRight);
};
