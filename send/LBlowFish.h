#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <utility>

#include "send/BlowfishTables.h"

// Standard Blowfish (B. Schneier, 1993) with 16 rounds, encryption only, each block on its own (electronic
// codebook), as the DCT format demands. A block is 8 bytes: two 32-bit words, each little-endian in the
// buffer, the left half first. (The published test vectors are big-endian.)
// Thread: one at a time for SetKey; any number afterwards.
class LBlowFish {
public:
    static constexpr size_t kBlockBytes = 8;

    // Sets the key: the bytes of the text. Bytes after the 72nd have no effect, since 18 subkeys take 72
    // bytes. False (traced) for an empty text, which leaves the tables as they were.
    bool SetKey(std::string_view text);

    // Encrypts in place. Precondition: the size is a multiple of 8 and the key is set; an incomplete last
    // block is left as it is.
    void EncryptBuffer(std::span<uint8_t> buffer) const;

private:
    void MixKey(std::string_view text);

    template <size_t... kBlock>
    void EncryptBytes(uint8_t* bytes, std::index_sequence<kBlock...>) const;
    template <size_t... kBlock>
    void Encrypt(uint32_t* left, uint32_t* right, std::index_sequence<kBlock...>) const;
    uint32_t F(uint32_t x) const;

    uint32_t m_p[kBlowfishPWords] = {};
    uint32_t m_s[kBlowfishBoxes][kBlowfishBoxWords] = {};
};
