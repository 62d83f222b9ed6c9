#include "send/LBlowFish.h"

#include <cstring>

#include "base/LTrace.h"

// The cipher as published, with one addition for speed: EncryptBuffer takes six blocks at a time. Each round
// of one block depends on the round before, so a single block leaves most of the processor idle, whereas six
// independent blocks keep it busy: they take half the time, four of them a quarter more than six. Eight were
// 3 % faster natively and 2 % slower in the product, whose code has eight registers. The number of blocks is
// a template parameter and the loops over them are fold expressions. Ordinary loops were rejected: the
// compiler unrolls them only at -O3, and the product, built with -O2, would keep every word in memory.

static constexpr size_t kRounds = 16;
static constexpr size_t kBlocksAtOnce = 6;
using OneBlock = std::make_index_sequence<1>;
using SeveralBlocks = std::make_index_sequence<kBlocksAtOnce>;

static uint32_t LoadWord(const uint8_t* bytes) {
    return static_cast<uint32_t>(bytes[0]) | static_cast<uint32_t>(bytes[1]) << 8 |
           static_cast<uint32_t>(bytes[2]) << 16 | static_cast<uint32_t>(bytes[3]) << 24;
}

static void StoreWord(uint8_t* bytes, uint32_t word) {
    bytes[0] = static_cast<uint8_t>(word);
    bytes[1] = static_cast<uint8_t>(word >> 8);
    bytes[2] = static_cast<uint8_t>(word >> 16);
    bytes[3] = static_cast<uint8_t>(word >> 24);
}

// Key schedule as published: mix the key into the subkeys, then replace subkeys and boxes, two words at a
// time, by the repeated encryption of an all-zero block.
bool LBlowFish::SetKey(std::string_view text) {
    if (text.empty()) {
        LTrace("LBlowFish::SetKey key length is zero");
        return false;
    }
    std::memcpy(m_p, kBlowfishP, sizeof m_p);
    std::memcpy(m_s, kBlowfishS, sizeof m_s);
    MixKey(text);

    uint32_t left = 0;
    uint32_t right = 0;
    for (size_t i = 0; i < kBlowfishPWords; i += 2) {
        Encrypt(&left, &right, OneBlock());
        m_p[i] = left;
        m_p[i + 1] = right;
    }
    for (auto& box : m_s) {
        for (size_t i = 0; i < kBlowfishBoxWords; i += 2) {
            Encrypt(&left, &right, OneBlock());
            box[i] = left;
            box[i + 1] = right;
        }
    }
    return true;
}

// Adds the key to the subkeys: its bytes, repeated from the start when they run out, four to a word with the
// first one in the highest byte.
void LBlowFish::MixKey(std::string_view text) {
    size_t next = 0;
    for (uint32_t& subkey : m_p) {
        uint32_t word = 0;
        for (size_t i = 0; i < 4; ++i) {
            word = word << 8 | static_cast<uint8_t>(text[next]);
            next = (next + 1) % text.size();
        }
        subkey ^= word;
    }
}

void LBlowFish::EncryptBuffer(std::span<uint8_t> buffer) const {
    constexpr size_t kStep = kBlocksAtOnce * kBlockBytes;
    for (; buffer.size() >= kStep; buffer = buffer.subspan(kStep))
        EncryptBytes(buffer.data(), SeveralBlocks());
    for (; buffer.size() >= kBlockBytes; buffer = buffer.subspan(kBlockBytes))
        EncryptBytes(buffer.data(), OneBlock());
}

// The number of blocks is a compile-time constant, so that their words can stay in registers.
template <size_t... kBlock>
void LBlowFish::EncryptBytes(uint8_t* bytes, std::index_sequence<kBlock...> blocks) const {
    uint32_t left[] = {LoadWord(bytes + kBlock * kBlockBytes)...};
    uint32_t right[] = {LoadWord(bytes + kBlock * kBlockBytes + 4)...};
    Encrypt(left, right, blocks);
    (StoreWord(bytes + kBlock * kBlockBytes, left[kBlock]), ...);
    (StoreWord(bytes + kBlock * kBlockBytes + 4, right[kBlock]), ...);
}

// Two rounds in each pass, so that the halves need not be swapped between rounds.
template <size_t... kBlock>
inline void LBlowFish::Encrypt(uint32_t* left, uint32_t* right, std::index_sequence<kBlock...>) const {
    for (size_t round = 0; round < kRounds; round += 2) {
        const uint32_t first = m_p[round];
        const uint32_t second = m_p[round + 1];
        ((left[kBlock] ^= first, right[kBlock] ^= F(left[kBlock])), ...);
        ((right[kBlock] ^= second, left[kBlock] ^= F(right[kBlock])), ...);
    }
    ((left[kBlock] ^= m_p[kRounds], right[kBlock] ^= m_p[kRounds + 1]), ...);
    (std::swap(left[kBlock], right[kBlock]), ...);
}

inline uint32_t LBlowFish::F(uint32_t x) const {
    return ((m_s[0][x >> 24] + m_s[1][x >> 16 & 0xFF]) ^ m_s[2][x >> 8 & 0xFF]) + m_s[3][x & 0xFF];
}
