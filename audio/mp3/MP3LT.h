#pragma once

#include <cstdint>
#include <vector>

// The tables that all decoders share. InitTables builds them, once; before that they are empty.
// Thread: any, after its own InitTables().
struct MP3LT {
    static bool InitTables();
    static const MP3LT& Tables() { return s_tables; }

    static MP3LT s_tables;

    // The synthesis matrix, cos((2k + 1) (i + 16) pi / 64) * 262144. MP3Loops computes the same with a fast
    // transform; tests hold the two against each other.
    float synthesis[64][32];
    // 2^((g - 210) / 4), 2^(-i / 2) and |i|^(4/3).
    float globalGain[256];
    float scaleFactor[65];
    float power[8207];

    // sign(v) |v|^(4/3) at v + 16.
    float signedPower[32];

    // An entry of a table of codes, from the lowest byte up: how many bits to skip, signs included, two
    // places in signedPower, and 0. Codes that are longer than the index have an entry that leads to a table
    // of its own: the index's bits, that table's offset, and the width of its index. Where linear bits may
    // follow, a pair with a 15 has its values without signs and kEscape.
    using Code = uint32_t;
    static constexpr uint32_t kEscape = 0x80;
    static constexpr uint32_t kPairBits = 10;
    static constexpr Code MakeCode(uint32_t bits, uint32_t x, uint32_t y, uint32_t kind) {
        return bits | x << 8 | y << 16 | kind << 24;
    }
    std::vector<Code>
        pairs[15];  // by the sets of codes; of each, the first 2^kPairBits are looked into first

    // The same for quadruples: the number of bits, and a place in quadValues.
    static constexpr uint32_t kQuadBits = 10;
    uint16_t quads[2][1 << kQuadBits];
    float quadValues[256][4];  // two bits for each value: 0, 1 and, for -1, 2
};
