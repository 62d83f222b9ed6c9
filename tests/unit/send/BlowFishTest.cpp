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
    static const std::tuple<Bytes, const char*, const char*> kCases[] = {
        {Hex("3000000000000000"), "1000000000000001", "7D856F9A613063F2"},
        {Hex("FEDCBA9876543210"), "FFFFFFFFFFFFFFFF", "6B5C5A9C5D9E0A5A"},
        {Hex("F0"), "FEDCBA9876543210", "F9AD597C49DB005E"},
        {Text("abcdefghijklmnopqrstuvwxyz"), "424C4F5746495348", "324ED0FEF413A203"},
        {LongKey(57), "FEDCBA9876543210", "30C590D64AC6C736"},
        {LongKey(72), "FEDCBA9876543210", "1E7BBCF0BE04D576"},
        {LongKey(72) + Hex("AA550011"), "FEDCBA9876543210", "1E7BBCF0BE04D576"},
    };
    for (const auto& [key, clear, expected] : kCases) {
        LBlowFish cipher;
        ASSERT_TRUE(cipher.SetKey({reinterpret_cast<const char*>(key.data()), key.size()}));
        Bytes block = Reversed(clear);
        cipher.EncryptBuffer(block);
        EXPECT_EQ(block, Reversed(expected)) << expected;
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
        for (size_t i = 0; i < single.size(); i += 8) cipher.EncryptBuffer(std::span(single).subspan(i, 8));
        EXPECT_EQ(buffer, single) << blocks << " blocks";
    }
}
