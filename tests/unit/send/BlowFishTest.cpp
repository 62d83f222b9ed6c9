#include <algorithm>

#include "send/LBlowFish.h"
#include "tests/unit/audio/AudioTest.h"

// The published vectors read the halves of a block with their highest byte first; the buffers here hold them
// with the lowest first.
static Bytes Reversed(const char* hex) {
    Bytes block = Hex(hex);
    std::reverse(block.begin(), block.begin() + 4);
    std::reverse(block.begin() + 4, block.end());
    return block;
}

static Bytes LongKey(size_t bytes) {
    Bytes key(bytes);
    for (size_t i = 0; i < bytes; ++i) key[i] = static_cast<uint8_t>(0x10 + 3 * i);
    return key;
}

// Eric Young's vectors, and keys beyond the 56 bytes of the published cipher, where the 72nd byte is the last
// to count.
TEST(BlowFish, MeetsThePublishedVectors) {
    static const struct {
        Bytes key;
        const char *clear, *cipher;
    } kCases[] = {
        {Hex("0000000000000000"), "0000000000000000", "4EF997456198DD78"},
        {Hex("3000000000000000"), "1000000000000001", "7D856F9A613063F2"},
        {Hex("FEDCBA9876543210"), "FFFFFFFFFFFFFFFF", "6B5C5A9C5D9E0A5A"},
        {Hex("F0"), "FEDCBA9876543210", "F9AD597C49DB005E"},
        {Hex("F0E1D2"), "FEDCBA9876543210", "E9C2B70A1BC65CF3"},
        {Text("abcdefghijklmnopqrstuvwxyz"), "424C4F5746495348", "324ED0FEF413A203"},
        {Text("Who is John Galt?"), "FEDCBA9876543210", "CC91732B8022F684"},
        {LongKey(56), "FEDCBA9876543210", "7BDEFD3D9B4DA5EC"},
        {LongKey(57), "FEDCBA9876543210", "30C590D64AC6C736"},
        {LongKey(64), "FEDCBA9876543210", "9C2F43ED3E2386EC"},
        {LongKey(72), "FEDCBA9876543210", "1E7BBCF0BE04D576"},
        {LongKey(72) + Hex("AA550011"), "FEDCBA9876543210", "1E7BBCF0BE04D576"},
    };
    for (const auto& c : kCases) {
        LBlowFish cipher;
        ASSERT_TRUE(cipher.SetKey({reinterpret_cast<const char*>(c.key.data()), c.key.size()}));
        Bytes block = Reversed(c.clear);
        cipher.EncryptBlock(std::span<uint8_t, LBlowFish::kBlockBytes>(block));
        EXPECT_EQ(block, Reversed(c.cipher)) << c.cipher;
    }
    const TraceLog trace;
    EXPECT_FALSE(LBlowFish().SetKey(""));
    EXPECT_TRUE(trace.Has("LBlowFish::SetKey key length is zero"));
}

TEST(BlowFish, EncryptsEachBlockOfABufferOnItsOwn) {
    LBlowFish cipher;
    ASSERT_TRUE(cipher.SetKey("secret"));
    for (size_t blocks = 0; blocks < 12; ++blocks) {
        Bytes buffer(blocks * LBlowFish::kBlockBytes);
        for (size_t i = 0; i < buffer.size(); ++i) buffer[i] = static_cast<uint8_t>(i * 37);
        Bytes single = buffer;
        cipher.EncryptBuffer(buffer);
        for (size_t i = 0; i < single.size(); i += 8)
            cipher.EncryptBlock(std::span(single).subspan(i).first<8>());
        EXPECT_EQ(buffer, single) << blocks << " blocks";
    }
}
