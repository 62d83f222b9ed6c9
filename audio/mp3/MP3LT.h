#pragma once

#include <cstdint>
#include <vector>

// The tables that all decoders share. InitTables builds them, once; before that they are empty.
// Thread: the first InitTables() before any other thread decodes; afterwards any.
struct MP3LT {
    static bool InitTables();
    static const MP3LT& Tables();

    // The synthesis matrix, cos((2k + 1) (i + 16) pi / 64) * 262144. MP3Loops computes the same with a fast
    // transform; tests hold the two against each other.
    float synthesis[64][32];
    // 2^((g - 210) / 4), 2^(-i / 2) and |i|^(4/3).
    float globalGain[256];
    float scaleFactor[65];
    float power[8207];

    // sign(v) |v|^(4/3) at v + 16, and of quadruples' values (0, 1 and, for -1, 2).
    float signedPower[32];
    float quadValues[4];

    // An entry of a table of codes. Direct: how many bits to skip, signs included, and two places in
    // signedPower. Longer codes have an entry that leads to a table of its own: its width and offset.
    // Where linear bits may follow, a pair with a 15 has its values without signs, after which those are
    // read one by one.
    struct Code {
        uint8_t bits;
        uint8_t x;
        uint8_t y;
        uint8_t kind;
    };
    static constexpr uint8_t kDirect = 0, kEscape = 0x80;  // else: the width of the table it leads to
    static constexpr uint32_t kPairBits = 10;
    std::vector<Code>
        pairs[15];  // by the sets of codes; of each, the first 2^kPairBits are looked into first
    // Four values in two bits each, v in the lowest, above the number of bits.
    static constexpr uint32_t kQuadBits = 10;
    uint16_t quads[2][1 << kQuadBits];
};
