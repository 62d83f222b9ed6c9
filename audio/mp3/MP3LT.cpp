#include "audio/mp3/MP3LT.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numbers>

#include "audio/mp3/MP3Data.h"
#include "base/LThread.h"

namespace {

LCriticalSection s_lock;
bool s_isBuilt = false;  // under the lock

uint32_t Length(uint32_t code) {
    return 31 - static_cast<uint32_t>(std::countl_zero(code | 1));
}

void FillPowers(MP3LT& t) {
    for (int i = 0; i < 64; ++i) {
        for (int k = 0; k < 32; ++k)
            t.synthesis[i][k] =
                static_cast<float>(std::cos((2 * k + 1) * (i + 16) * std::numbers::pi / 64) * 262144);
    }
    for (int i = 0; i < 256; ++i) t.globalGain[i] = static_cast<float>(std::pow(2.0, (i - 210) / 4.0));
    for (int i = 0; i < 65; ++i) t.scaleFactor[i] = static_cast<float>(std::pow(2.0, -i / 2.0));
    for (int i = 0; i < 8207; ++i) t.power[i] = static_cast<float>(std::pow(i, 4.0 / 3.0));
    for (int i = 0; i < 16; ++i) {
        t.signedPower[16 + i] = t.power[i];
        t.signedPower[16 - i] = -t.power[i];
    }
    constexpr float kValues[4] = {0, 1, -1, 0};
    for (uint32_t i = 0; i < 256; ++i)
        for (uint32_t k = 0; k < 4; ++k) t.quadValues[i][k] = kValues[i >> (2 * k) & 3];
}

// A code with the signs behind it, as it stands in the stream.
struct SignedCode {
    uint32_t bits;
    uint32_t length;
    MP3LT::Code code;  // without its length
};

// The pairs of a set with every combination of signs. Where linear bits follow, a pair with a 15 stands once,
// and its signs come later.
std::vector<SignedCode> SignedCodes(std::span<const uint32_t> set, bool hasLinear) {
    size_t side = 2;
    while (side * side < set.size()) ++side;
    std::vector<SignedCode> all;
    for (size_t i = 0; i < set.size(); ++i) {
        const uint32_t length = Length(set[i]), bits = set[i] - (1u << length);
        const uint32_t x = static_cast<uint32_t>(i / side), y = static_cast<uint32_t>(i % side);
        if (hasLinear && (x == 15 || y == 15)) {
            all.push_back({bits, length, MP3LT::MakeCode(0, x, y, MP3LT::kEscape)});
            continue;
        }
        const uint32_t signs = (x > 0 ? 1u : 0u) + (y > 0 ? 1u : 0u);
        for (uint32_t s = 0; s < 1u << signs; ++s) {
            const bool isXNegative = x > 0 && (s >> (signs - 1) & 1) != 0;
            const bool isYNegative = y > 0 && (s & 1) != 0;
            all.push_back(
                {bits << signs | s, length + signs,
                 MP3LT::MakeCode(0, isXNegative ? 16 - x : 16 + x, isYNegative ? 16 - y : 16 + y, 0)});
        }
    }
    return all;
}

// Enters a code at every index of a table of so many bits that begins with it.
void Enter(MP3LT::Code* table, uint32_t tableBits, uint32_t bits, uint32_t length, MP3LT::Code code) {
    const uint32_t free = tableBits - length;
    for (uint32_t i = 0; i < 1u << free; ++i) table[(bits << free) + i] = code | length;
}

void FillPairs(std::vector<MP3LT::Code>& codes, std::span<const uint32_t> set, bool hasLinear) {
    constexpr uint32_t kFirst = MP3LT::kPairBits;
    const std::vector<SignedCode> all = SignedCodes(set, hasLinear);
    std::vector<uint32_t> widths(1 << kFirst), offsets(1 << kFirst);  // of the second tables
    for (const SignedCode& c : all) {
        if (c.length <= kFirst) continue;
        uint32_t& width = widths[c.bits >> (c.length - kFirst)];
        width = std::max(width, c.length - kFirst);
    }
    codes.resize(1 << kFirst);
    for (size_t i = 0; i < widths.size(); ++i) {
        if (widths[i] == 0) continue;
        offsets[i] = static_cast<uint32_t>(codes.size());
        codes[i] = MP3LT::MakeCode(kFirst, offsets[i] & 0xFF, offsets[i] >> 8, widths[i]);
        codes.resize(codes.size() + (size_t{1} << widths[i]));
    }
    for (const SignedCode& c : all) {
        if (c.length <= kFirst) {
            Enter(codes.data(), kFirst, c.bits, c.length, c.code);
            continue;
        }
        const uint32_t rest = c.length - kFirst, first = c.bits >> rest;
        Enter(&codes[offsets[first]], widths[first], c.bits & ((1u << rest) - 1), rest, c.code);
    }
}

void FillQuads(uint16_t* table, std::span<const uint32_t> set) {
    for (uint32_t values = 0; values < 16; ++values) {
        const uint32_t code = set[values], signs = static_cast<uint32_t>(std::popcount(values));
        const uint32_t length = Length(code) + signs, free = MP3LT::kQuadBits - length;
        for (uint32_t s = 0; s < 1u << signs; ++s) {
            uint32_t left = signs, entry = length;
            for (uint32_t k = 0; k < 4; ++k) {
                if ((values >> (3 - k) & 1) == 0) continue;
                const uint32_t value = (s >> --left & 1) != 0 ? 2 : 1;
                entry |= value << (8 + 2 * k);
            }
            const uint32_t bits = (code - (1u << Length(code))) << signs | s;
            for (uint32_t i = 0; i < 1u << free; ++i)
                table[(bits << free) + i] = static_cast<uint16_t>(entry);
        }
    }
}

}  // namespace

MP3LT MP3LT::s_tables;

bool MP3LT::InitTables() {
    const LLock lock(s_lock);
    if (s_isBuilt) return true;
    FillPowers(s_tables);
    for (size_t i = 0; i < std::size(kMP3CodeSets); ++i)
        FillPairs(s_tables.pairs[i], kMP3CodeSets[i], i >= kMP3FirstLinearSet);
    for (size_t i = 0; i < 2; ++i) FillQuads(s_tables.quads[i], kMP3QuadSets[i]);
    s_isBuilt = true;
    return true;
}
