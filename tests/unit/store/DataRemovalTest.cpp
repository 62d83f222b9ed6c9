#include "store/DataRemoval.h"

#include <sstream>

#include "base/LFileLock.h"
#include "tests/unit/store/StoreTest.h"

namespace {

constexpr char kOurs[] =
    "settings.ini settings.ini~ bgsend.new users.lck Temp.sta 00000007/user.dat 00000007/rec12.re~ "
    "00000007/inuse.lck 00000007/moving.mo~ 00000007/untold.txt 00000007/Import/00000013.lck "
    "00000007/Current/00000012.dat 00000007/Current/00000012.WAV 00000007/Current/00000012.bad10 "
    "00000007/Current/00000014.wav 00000007/Sent/00000011.dat 00000007/Sent/dct00007-00011.dct "
    "00000009/Sent/00000012.wav 00000009/user.dat~";
constexpr char kForeign[] =
    "00000007/Sent/00000011.bak 00000007/Sent/letter.wav 00000007/rec.dat 2001/user.dat corvane.exe ";

class DataRemovalTest : public StoreTest {
protected:
    std::filesystem::path At(const std::string& file) const {
        return std::string(m_temp.Path().View()) + "/" + file;  // as either platform takes it
    }
    void Put(const std::string& files) const {
        std::istringstream names(files);
        for (std::string name; names >> name;) {
            std::filesystem::create_directories(At(name).parent_path());
            EXPECT_TRUE(WriteFileText(m_temp.File(name), "x")) << name;
        }
    }
    std::string Left(const std::string& files) const {
        std::istringstream names(files);
        std::string left;
        for (std::string name; names >> name;)
            if (LFile::Exists(m_temp.File(name))) left += name + " ";
        return left;
    }
    NotingContext m_context;
};

}  // namespace

TEST_F(DataRemovalTest, DeletesOurFilesAndFoldersAndNothingElse) {
    EXPECT_EQ(HoldsDictations({}), Holding::Unknown);
    Put(kForeign);
    EXPECT_EQ(HoldsDictations(m_temp.Path()), Holding::No);
    Put("20051225/Current/12345678.txt 00000007/Sent/00000012.tmp");
    EXPECT_EQ(HoldsDictations(m_temp.Path()), Holding::Yes);
    Put(kOurs);
    std::filesystem::permissions(At("00000007/Current/00000012.WAV"), std::filesystem::perms::owner_read);
    DataCount count(m_temp.Path(), [](const LPath&) { return int32_t{2000000000}; });
    EXPECT_EQ(count.Process(m_context), ProcessResult::Done);
    const auto [dictations, notSent, audioMs, users] = count.Contents();
    EXPECT_EQ(std::tuple(dictations, notSent, audioMs, users), std::tuple(4, 2, 6000000000, 2));
    EXPECT_EQ(DataRemoval(m_temp.Path()).Process(m_context), ProcessResult::Done);
    EXPECT_EQ(Left(std::string(kOurs) + " " + kForeign), kForeign);
    EXPECT_FALSE(LFile::IsFolder(m_temp.File("00000007/Current")));
    EXPECT_TRUE(LFile::Exists(m_temp.File("20051225/Current/12345678.txt"))) << "a date";
}

TEST_F(DataRemovalTest, ALinkKeepsTheUsersFilesAndTheSettings) {
    const std::string kept = "settings.ini 00000009/user.dat ";
    Put(kept + "00000008/user.dat 00000001.wav");
    std::error_code refused;
    std::filesystem::create_directory_symlink(At(""), At("00000009/Current"), refused);
    if (refused) GTEST_SKIP() << refused.message();
    EXPECT_EQ(DataCount(m_temp.Path(), nullptr).Process(m_context), ProcessResult::Failed);
    EXPECT_EQ(DataRemoval(m_temp.Path()).Process(m_context), ProcessResult::Failed);
    EXPECT_EQ(Left(kept + "00000008/user.dat 00000001.wav"), kept + "00000001.wav ");
}

TEST_F(DataRemovalTest, AUserForWhomAProgramRunsKeepsAllThatItNeeds) {
    const std::string kept = "settings.ini 00000007/inuse.lck 00000007/Sent/00000011.wav ";
    Put(kept + "00000009/user.dat");
    LFileLock other;
    other.TryTake(m_temp.File("00000007/inuse.lck"));
    DataRemoval removal(m_temp.Path());
    EXPECT_EQ(removal.Process(m_context), ProcessResult::Failed);
    EXPECT_EQ(Left(kept + "00000009/user.dat"), kept);
    other.Release();
    m_context.cancelAfter = 1;
    EXPECT_EQ(removal.Process(m_context), ProcessResult::Stopped);
    EXPECT_EQ(removal.Process(m_context), ProcessResult::Done);
    EXPECT_FALSE(LFile::IsFolder(m_temp.Path()));
}
