#include "install/SetupPackage.h"

#include "tests/unit/install/PackageKit.h"

namespace {

bool IsAccepted(std::span<const uint8_t> bytes) {
    LMemoryFile stream(bytes);
    const auto package = SetupPackage::Open(stream);
    NotingContext context;
    return package && package->Check(context) == ProcessResult::Done;
}

const std::vector<GivenFile> kTwo = {{"corvane.exe", "MZ, the program"}, {"a.txt", "text"}};

}  // namespace

TEST(SetupPackage, RefusesEachCutAndEachFlippedBit) {
    EXPECT_EQ(LCrc32::Of(Text("123456789")), 0xCBF43926u);
    const Bytes whole = PackageParts(kTwo).Join();
    ASSERT_TRUE(IsAccepted(whole));
    for (size_t size = 0; size < whole.size(); ++size)
        EXPECT_FALSE(IsAccepted(std::span(whole).first(size))) << size;
    for (size_t bit = 0; bit < 8 * whole.size(); ++bit) {
        Bytes damaged = whole;
        damaged[bit / 8] ^= static_cast<uint8_t>(1 << bit % 8);
        EXPECT_FALSE(IsAccepted(damaged)) << bit;
    }
    Bytes longer = whole;
    longer.insert(longer.begin() + 3, 0);
    EXPECT_FALSE(IsAccepted(longer));
}

TEST(SetupPackage, RefusesADirectoryThatWasForged) {
    using Forge = void (*)(PackageParts&);
    static constexpr Forge kForgeries[] = {
        [](PackageParts& p) { p.files[1].name = "..\\a.txt"; },
        [](PackageParts& p) { p.files[1].name = "C:a.txt"; },
        [](PackageParts& p) { p.files[1].name = "Con.txt"; },
        [](PackageParts& p) { p.files[1].name = "CORVANE.EXE"; },
        [](PackageParts& p) { p.files[1].name = std::string(65, 'a'); },
        [](PackageParts& p) { p.files[1].name.clear(); },
        [](PackageParts& p) { p.files[1].size += 1; },
        [](PackageParts& p) { p.files[1].size = 0xFFFFFFFF; },
        [](PackageParts& p) { p.files.pop_back(), p.count = 1; },
        [](PackageParts& p) { p.count = 0xFFFFFFFF; },
        [](PackageParts& p) { p.bytes.clear(), p.files.clear(), p.count = 0; },
    };
    for (size_t i = 0; i < std::size(kForgeries); ++i) {
        PackageParts parts(kTwo);
        kForgeries[i](parts);
        EXPECT_FALSE(IsAccepted(parts.Join())) << i;
    }
}
