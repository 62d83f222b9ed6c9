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

// Eric Young's vectors, and keys beyond the 56 bytes of the published cipher, where the 72nd byte is the last
// to count.
TEST(BlowFish, MeetsThePublishedVectors) {
    static const struct {
        const char *key, *clear, *cipher;
    } kCases[] = {
        {"0000000000000000", "0000000000000000", "4EF997456198DD78"},
        {"3000000000000000", "1000000000000001", "7D856F9A613063F2"},
        {"FEDCBA9876543210", "0123456789ABCDEF", "0ACEAB0FC6A0A28D"},
        {"FEDCBA9876543210", "FFFFFFFFFFFFFFFF", "6B5C5A9C5D9E0A5A"},
        {"F0", "FEDCBA9876543210", "F9AD597C49DB005E"},
        {"F0E1D2", "FEDCBA9876543210", "E9C2B70A1BC65CF3"},
        {"F0E1D2C3B4A59687", "FEDCBA9876543210", "E87A244E2CC85E82"},
        {"F0E1D2C3B4A5968778695A4B3C2D1E0F00112233445566", "FEDCBA9876543210", "80C7D7D45A5479AD"},
        {"F0E1D2C3B4A5968778695A4B3C2D1E0F0011223344556677", "FEDCBA9876543210", "05044B62FA52D080"},
        {"6162636465666768696A6B6C6D6E6F707172737475767778797A", "424C4F5746495348", "324ED0FEF413A203"},
        {"57686F206973204A6F686E2047616C743F", "FEDCBA9876543210", "CC91732B8022F684"},
        {"101316191C1F2225282B2E3134373A3D404346494C4F5255585B5E6164676A6D"
         "707376797C7F8285888B8E9194979A9DA0A3A6A9ACAFB2B5",
         "FEDCBA9876543210", "7BDEFD3D9B4DA5EC"},
        {"101316191C1F2225282B2E3134373A3D404346494C4F5255585B5E6164676A6D"
         "707376797C7F8285888B8E9194979A9DA0A3A6A9ACAFB2B5B8",
         "FEDCBA9876543210", "30C590D64AC6C736"},
        {"101316191C1F2225282B2E3134373A3D404346494C4F5255585B5E6164676A6D"
         "707376797C7F8285888B8E9194979A9DA0A3A6A9ACAFB2B5B8BBBEC1C4C7CACD",
         "FEDCBA9876543210", "9C2F43ED3E2386EC"},
        {"101316191C1F2225282B2E3134373A3D404346494C4F5255585B5E6164676A6D"
         "707376797C7F8285888B8E9194979A9DA0A3A6A9ACAFB2B5B8BBBEC1C4C7CACD"
         "D0D3D6D9DCDFE2E5",
         "FEDCBA9876543210", "1E7BBCF0BE04D576"},
        {"101316191C1F2225282B2E3134373A3D404346494C4F5255585B5E6164676A6D"
         "707376797C7F8285888B8E9194979A9DA0A3A6A9ACAFB2B5B8BBBEC1C4C7CACD"
         "D0D3D6D9DCDFE2E5AA550011",
         "FEDCBA9876543210", "1E7BBCF0BE04D576"},
    };
    for (const auto& c : kCases) {
        LBlowFish cipher;
        const Bytes key = Hex(c.key);
        ASSERT_TRUE(cipher.SetKey({reinterpret_cast<const char*>(key.data()), key.size()}));
        Bytes block = Reversed(c.clear);
        cipher.EncryptBlock(std::span<uint8_t, LBlowFish::kBlockBytes>(block));
        EXPECT_EQ(block, Reversed(c.cipher)) << c.key;
    }
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

TEST(BlowFish, RefusesAnEmptyKey) {
    const TraceLog trace;
    LBlowFish cipher;
    EXPECT_FALSE(cipher.SetKey(""));
    EXPECT_TRUE(trace.Has("LBlowFish::SetKey key length is zero"));
}
