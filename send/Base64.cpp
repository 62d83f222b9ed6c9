#include "send/Base64.h"

#include <array>
#include <cstring>

// Two characters at a time, from a table of all pairs (8 KB): half the look-ups of the plain way. Four bytes
// are read at once for three of them.

static constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

using Pair = std::array<char, 2>;

static constexpr std::array<Pair, 4096> kPairs = [] {
    std::array<Pair, 4096> pairs{};
    for (size_t i = 0; i < pairs.size(); ++i) pairs[i] = {kAlphabet[i / 64], kAlphabet[i % 64]};
    return pairs;
}();

static void Put(uint32_t pair, char* text) {
    std::memcpy(text, &kPairs[pair & 0xFFF], 2);
}

static uint32_t Word(uint32_t a, uint32_t b, uint32_t c, uint32_t d) {
    return a << 24 | b << 16 | c << 8 | d;
}

char* Base64Encode(std::span<const uint8_t> bytes, char* text) {
    const uint8_t* in = bytes.data();
    size_t left = bytes.size();
    for (; left >= 4; left -= 3, in += 3, text += 4) {
        const uint32_t word = Word(in[0], in[1], in[2], in[3]);  // compilers make one load of it
        Put(word >> 20, text);
        Put(word >> 8, text + 2);
    }
    if (left == 0) return text;
    const uint32_t last = Word(in[0], left > 1 ? in[1] : 0, left > 2 ? in[2] : 0, 0);
    Put(last >> 20, text);
    Put(last >> 8, text + 2);
    if (left < 2) text[2] = '=';
    if (left < 3) text[3] = '=';
    return text + 4;
}
