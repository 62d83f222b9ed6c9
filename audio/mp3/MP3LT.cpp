#include "audio/mp3/MP3LT.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numbers>

#include "audio/mp3/MP3Data.h"

namespace {

MP3LT s_tables;
bool s_isBuilt = false;

uint32_t Length(uint32_t code) {
    return static_cast<uint32_t>(std::bit_width(code)) - 1;
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
    t.quadValues[1] = 1;
    t.quadValues[2] = -1;
}

// A code with the signs behind it, as it stands in the stream.
struct SignedCode {
    uint32_t bits;
    uint32_t length;
    MP3LT::Code code;
};

// The pairs of a set with every combination of signs. Where linear bits follow, a pair with a 15 stands once,
// and its signs come later.
std::vector<SignedCode> SignedCodes(std::span<const uint32_t> set, bool hasLinear) {
    const uint32_t side = set.size() == 256 ? 16 : static_cast<uint32_t>(std::lround(std::sqrt(set.size())));
    std::vector<SignedCode> all;
    for (uint32_t i = 0; i < set.size(); ++i) {
        const int x = static_cast<int>(i / side), y = static_cast<int>(i % side);
        const uint32_t bits = set[i] - (1u << Length(set[i]));
        const bool isEscape = hasLinear && (x == 15 || y == 15);
        if (isEscape) {
            all.push_back({bits,
                           Length(set[i]),
                           {0, static_cast<uint8_t>(x), static_cast<uint8_t>(y), MP3LT::kEscape}});
            continue;
        }
        const uint32_t signs = (x > 0 ? 1u : 0u) + (y > 0 ? 1u : 0u);
        for (uint32_t s = 0; s < 1u << signs; ++s) {
            const bool isXNegative = x > 0 && (s >> (signs - 1) & 1) != 0;
            const bool isYNegative = y > 0 && (s & 1) != 0;
            all.push_back({bits << signs | s,
                           Length(set[i]) + signs,
                           {0, static_cast<uint8_t>(isXNegative ? 16 - x : 16 + x),
                            static_cast<uint8_t>(isYNegative ? 16 - y : 16 + y), MP3LT::kDirect}});
        }
    }
    return all;
}

// Enters a code at every index of a table of so many bits that begins with it.
void Enter(MP3LT::Code* table, uint32_t tableBits, uint32_t bits, uint32_t length, MP3LT::Code code) {
    code.bits = static_cast<uint8_t>(length);
    const uint32_t free = tableBits - length;
    for (uint32_t i = 0; i < 1u << free; ++i) table[(bits << free) + i] = code;
}

void FillPairs(std::vector<MP3LT::Code>& codes, std::span<const uint32_t> set, bool hasLinear) {
    constexpr uint32_t kFirst = MP3LT::kPairBits;
    const std::vector<SignedCode> all = SignedCodes(set, hasLinear);
    std::vector<uint8_t> widths(1 << kFirst);  // of the second tables
    for (const SignedCode& c : all) {
        if (c.length <= kFirst) continue;
        uint8_t& width = widths[c.bits >> (c.length - kFirst)];
        width = std::max(width, static_cast<uint8_t>(c.length - kFirst));
    }
    codes.resize(1 << kFirst);
    for (size_t i = 0; i < widths.size(); ++i) {
        if (widths[i] == 0) continue;
        const size_t offset = codes.size();
        codes[i] = {kFirst, static_cast<uint8_t>(offset & 0xFF), static_cast<uint8_t>(offset >> 8),
                    widths[i]};
        codes.resize(offset + (size_t{1} << widths[i]));
    }
    for (const SignedCode& c : all) {
        if (c.length <= kFirst) {
            Enter(codes.data(), kFirst, c.bits, c.length, c.code);
            continue;
        }
        const uint32_t rest = c.length - kFirst;
        const MP3LT::Code& first = codes[c.bits >> rest];
        const size_t offset = first.x + size_t{first.y} * 256;
        Enter(&codes[offset], first.kind, c.bits & ((1u << rest) - 1), rest, c.code);
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

bool MP3LT::InitTables() {
    if (s_isBuilt) return true;
    FillPowers(s_tables);
    for (size_t i = 0; i < std::size(kMP3CodeSets); ++i)
        FillPairs(s_tables.pairs[i], kMP3CodeSets[i], i >= kMP3FirstLinearSet);
    for (size_t i = 0; i < 2; ++i) FillQuads(s_tables.quads[i], kMP3QuadSets[i]);
    s_isBuilt = true;
    return true;
}

const MP3LT& MP3LT::Tables() {
    return s_tables;
}
