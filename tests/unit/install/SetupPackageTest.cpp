#include "install/SetupPackage.h"

#include <gtest/gtest.h>

#include "base/LBytes.h"
#include "base/LCrc32.h"
#include "base/LMemoryFile.h"
#include "tests/unit/TestKit.h"

namespace {

struct Given {
    std::string name;
    std::string bytes;
};

// The parts of a package, which a test may change before they are joined.
struct Parts {
    std::string bytes;  // of all files
    std::vector<PackageFile> files;
    uint32_t count;
    uint32_t marker = kMarkerSetup;

    explicit Parts(const std::vector<Given>& given) : count(static_cast<uint32_t>(given.size())) {
        for (const Given& file : given) {
            files.push_back({file.name, static_cast<uint32_t>(bytes.size()),
                             static_cast<uint32_t>(file.bytes.size()), 1172657045,
                             LCrc32::Of(Text(file.bytes))});
            bytes += file.bytes;
        }
    }
    Bytes Join() const {
        LByteWriter directory;
        directory.U32(count);
        for (const PackageFile& file : files) {
            for (const uint32_t number : {file.offset, file.size, file.time, file.crc}) directory.U32(number);
            directory.U8(static_cast<uint8_t>(file.name.size()));
            directory.Text(file.name);
        }
        LByteWriter package;
        package.Text(bytes);
        package.Bytes(directory.View());
        package.U32(LCrc32::Of(directory.View()));
        package.U32(static_cast<uint32_t>(bytes.size()));
        package.U32(marker);
        return {package.View().begin(), package.View().end()};
    }
};

bool IsAccepted(std::span<const uint8_t> bytes) {
    LMemoryFile stream(bytes);
    const auto package = SetupPackage::Open(stream);
    NotingContext context;
    return package && package->Check(context) == ProcessResult::Done;
}

const std::vector<Given> kThree = {
    {"corvane.exe", "MZ, the program"}, {"corvane.htm", std::string(70000, 'h')}, {"readme.txt", ""}};

}  // namespace

TEST(SetupPackage, GivesBackWhatItHolds) {
    EXPECT_EQ(LCrc32::Of(Text("123456789")), 0xCBF43926u);
    const Bytes bytes = Parts(kThree).Join();
    LMemoryFile stream(bytes);
    const auto package = SetupPackage::Open(stream);
    ASSERT_TRUE(package);
    EXPECT_EQ(package->Marker(), kMarkerSetup);
    EXPECT_EQ(package->TotalBytes(), 70015u);
    ASSERT_EQ(package->Files().size(), 3u);
    EXPECT_EQ(package->Files()[2].time, 1172657045u);
    for (size_t i = 0; i < 3; ++i) {
        LMemoryFile target;
        EXPECT_TRUE(package->Extract(package->Files()[i], target));
        EXPECT_EQ(package->Files()[i].name, kThree[i].name);
        EXPECT_TRUE(FileBytes(target) == Text(kThree[i].bytes));
        LMemoryFile full;
        full.SetCapacity(5);
        EXPECT_EQ(package->Extract(package->Files()[i], full), kThree[i].bytes.empty());
    }
}

TEST(SetupPackage, RefusesEachCutAndEachFlippedBit) {
    const std::vector<Given> small = {{"corvane.exe", "MZ, the program"}, {"a.txt", "text"}};
    const Bytes whole = Parts(small).Join();
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
    using Forge = void (*)(Parts&);
    static constexpr Forge kForgeries[] = {
        [](Parts& p) { p.files[1].name = "..\\a.txt"; },
        [](Parts& p) { p.files[1].name = "a/b.txt"; },
        [](Parts& p) { p.files[1].name = "C:a.txt"; },
        [](Parts& p) { p.files[1].name = "..."; },
        [](Parts& p) { p.files[1].name = "a.txt."; },
        [](Parts& p) { p.files[1].name = "Con.txt"; },
        [](Parts& p) { p.files[1].name = "lpt1"; },
        [](Parts& p) { p.files[1].name = "CORVANE.EXE"; },
        [](Parts& p) { p.files[1].name = std::string(65, 'a'); },
        [](Parts& p) { p.files[1].name.clear(); },
        [](Parts& p) { p.files[1].offset -= 1; },
        [](Parts& p) { p.files[1].size += 1; },
        [](Parts& p) { p.files[1].size = 0xFFFFFFFF; },
        [](Parts& p) { p.files.pop_back(), p.count = 1; },
        [](Parts& p) { p.count = 3; },
        [](Parts& p) { p.count = 0xFFFFFFFF; },
        [](Parts& p) { p.marker = 0x12345678; },
        [](Parts& p) { p.bytes.clear(), p.files.clear(), p.count = 0; },
    };
    for (size_t i = 0; i < std::size(kForgeries); ++i) {
        Parts parts(kThree);
        kForgeries[i](parts);
        EXPECT_FALSE(IsAccepted(parts.Join())) << i;
    }
}
