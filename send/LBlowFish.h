#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <utility>

#include "send/BlowfishTables.h"

// Standard Blowfish with 16 rounds, encryption only, each block on its own (electronic codebook). A block is
// two 32-bit words, both little-endian in the buffer, the left half first.
// Thread: once the key is set, any number at a time.
class LBlowFish {
public:
    static constexpr size_t kBlockBytes = 8;

    // The key is the whole text, however long; bytes after the 72nd have no effect. False (traced) for an
    // empty text, which leaves the tables unset.
    bool SetKey(std::string_view text);

    // Encrypts in place. The size is a multiple of 8 and the key is set.
    void EncryptBuffer(std::span<uint8_t> buffer) const;
    void EncryptBlock(std::span<uint8_t, kBlockBytes> block) const { EncryptBuffer(block); }

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
