#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

constexpr size_t kMP3Lines = 576;  // of a granule of one channel

// The tables of the standards from which MP3LT builds what the decoder reads.

// The limits of the scale-factor bands, in lines of a granule; those of short blocks in lines of one window.
struct MP3Bands {
    uint16_t longLimits[23];
    uint16_t shortLimits[14];
};
// In the order of MP3Header::RateIndex().
extern const MP3Bands kMP3BandLimits[9];

// The codes of pairs and of quadruples of values.
extern const std::span<const uint32_t> kMP3CodeSets[15];
constexpr size_t kMP3FirstLinearSet = 13;  // from there on linear bits follow a 15
extern const std::span<const uint32_t> kMP3QuadSets[2];

struct MP3PairTable {
    int8_t codeSet;      // below 0: no codes, all values are 0
    uint8_t linearBits;  // how many follow a value of 15
};
extern const MP3PairTable kMP3PairTables[32];

// The synthesis window, times 65536.
extern const int32_t kMP3Window[512];
