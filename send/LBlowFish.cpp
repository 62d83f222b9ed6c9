#include "send/LBlowFish.h"

#include <cstring>

#include "base/LTrace.h"

static constexpr size_t kRounds = 16;
// A block's rounds wait for each other, those of its neighbours do not: four at a time keep the processor
// busy.
static constexpr size_t kBlocksAtOnce = 4;

static uint32_t LoadWord(const uint8_t* bytes) {
    return static_cast<uint32_t>(bytes[0]) | static_cast<uint32_t>(bytes[1]) << 8 |
           static_cast<uint32_t>(bytes[2]) << 16 | static_cast<uint32_t>(bytes[3]) << 24;
}

static void StoreWord(uint8_t* bytes, uint32_t word) {
    for (size_t i = 0; i < 4; ++i, word >>= 8) bytes[i] = static_cast<uint8_t>(word);
}

bool LBlowFish::SetKey(std::string_view text) {
    if (text.empty()) {
        LTrace("LBlowFish::SetKey key length is zero");
        return false;
    }
    std::memcpy(m_p, kBlowfishP, sizeof m_p);
    std::memcpy(m_s, kBlowfishS, sizeof m_s);
    MixKey(text);

    uint32_t left[1] = {0};
    uint32_t right[1] = {0};
    for (size_t i = 0; i < kBlowfishPWords; i += 2) {
        Encrypt(left, right);
        m_p[i] = left[0];
        m_p[i + 1] = right[0];
    }
    for (auto& box : m_s) {
        for (size_t i = 0; i < kBlowfishBoxWords; i += 2) {
            Encrypt(left, right);
            box[i] = left[0];
            box[i + 1] = right[0];
        }
    }
    return true;
}

// The text's bytes, again from its start when they run out, four to a word with the first one on top.
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
    while (buffer.size() >= kStep) {
        EncryptBytes<kBlocksAtOnce>(buffer.data());
        buffer = buffer.subspan(kStep);
    }
    while (buffer.size() >= kBlockBytes) {
        EncryptBytes<1>(buffer.data());
        buffer = buffer.subspan(kBlockBytes);
    }
}

template <size_t kBlocks>
void LBlowFish::EncryptBytes(uint8_t* bytes) const {
    uint32_t left[kBlocks];
    uint32_t right[kBlocks];
    for (size_t i = 0; i < kBlocks; ++i) {
        left[i] = LoadWord(bytes + i * kBlockBytes);
        right[i] = LoadWord(bytes + i * kBlockBytes + 4);
    }
    Encrypt(left, right);
    for (size_t i = 0; i < kBlocks; ++i) {
        StoreWord(bytes + i * kBlockBytes, left[i]);
        StoreWord(bytes + i * kBlockBytes + 4, right[i]);
    }
}

// Two rounds a turn, so that the halves need not change places between them.
template <size_t kBlocks>
void LBlowFish::Encrypt(uint32_t (&left)[kBlocks], uint32_t (&right)[kBlocks]) const {
    for (size_t round = 0; round < kRounds; round += 2) {
        for (size_t i = 0; i < kBlocks; ++i) {
            left[i] ^= m_p[round];
            right[i] ^= F(left[i]);
        }
        for (size_t i = 0; i < kBlocks; ++i) {
            right[i] ^= m_p[round + 1];
            left[i] ^= F(right[i]);
        }
    }
    for (size_t i = 0; i < kBlocks; ++i) {
        const uint32_t last = left[i] ^ m_p[kRounds];
        left[i] = right[i] ^ m_p[kRounds + 1];
        right[i] = last;
    }
}

inline uint32_t LBlowFish::F(uint32_t x) const {
    return ((m_s[0][x >> 24] + m_s[1][x >> 16 & 0xFF]) ^ m_s[2][x >> 8 & 0xFF]) + m_s[3][x & 0xFF];
}
