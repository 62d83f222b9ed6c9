#include "store/DataRemoval.h"

#include <set>

#include "base/LFileLock.h"
#include "base/LLeftOver.h"
#include "tests/unit/store/StoreTest.h"

namespace {

class DataRemovalTest : public StoreTest {
protected:
    std::filesystem::path At(const std::string& file) const {
        return std::string(m_temp.Path().View()) + "/" + file;  // as either platform takes it
    }
    // Writes the files, each with the folder that it lies in.
    void Put(const std::set<std::string>& files) const {
        for (const std::string& file : files) {
            std::filesystem::create_directories(At(file).parent_path());
            EXPECT_TRUE(WriteFileText(m_temp.File(file), "x")) << file;
        }
    }
    // All files and folders that are left.
    std::set<std::string> Left() const {
        std::set<std::string> left;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(m_temp.Path().c_str()))
            left.insert(entry.path().generic_string().substr(m_temp.Path().View().size() + 1));
        return left;
    }
    NotingContext m_context;
};

const std::set<std::string> kOurs = {"settings.ini",
                                     "settings.ini~",
                                     "bgsend.dat",
                                     "bgsend.new",
                                     "bgsend.lck",
                                     "users.lck",
                                     "Temp.sta",
                                     "00000007/user.dat",
                                     "00000007/rec0.dat",
                                     "00000007/rec12.re~",
                                     "00000007/inuse.lck",
                                     "00000007/moving.mo~",
                                     "00000007/deleting.txt",
                                     "00000007/untold.txt",
                                     "00000007/Import/00000013.lck",
                                     "00000007/Current/00000012.dat",
                                     "00000007/Current/00000012.WAV",
                                     "00000007/Current/00000012.txt",
                                     "00000007/Current/00000012.ins",
                                     "00000007/Current/00000012.bad10",
                                     "00000007/Current/00000014.wav",
                                     "00000007/Sent/00000011.dat",
                                     "00000007/Sent/dct00007-00011.dct",
                                     "00000009/Sent/00000012.wav"};
// With their folders.
const std::set<std::string> kForeign = {"corvane.exe",
                                        "settings.ini.bak",
                                        "2001",
                                        "2001/user.dat",
                                        "00000007",
                                        "00000007/rec.dat",
                                        "00000007/Sent",
                                        "00000007/Sent/letter.wav",
                                        "00000007/Sent/00000011.bak"};

}  // namespace

TEST_F(DataRemovalTest, DeletesOurFilesAndFoldersAndNothingElse) {
    std::set<std::string> files = kOurs;
    for (const std::string& name : kForeign)
        if (name.find('.') != std::string::npos) files.insert(name);
    Put(files);
    TempFolder outside;
    WriteFileText(outside.File("00000001.wav"), "x");
    std::error_code refused;
    std::filesystem::create_directory_symlink(outside.Path().c_str(), At("00000009/Current"), refused);
    std::filesystem::permissions(At("00000007/Current/00000012.WAV"), std::filesystem::perms::owner_read);

    DataRemoval removal(m_temp.Path());
    EXPECT_EQ(removal.Process(m_context), ProcessResult::Done);
    std::set<std::string> left = Left();
    if (!refused) {
        EXPECT_EQ(left.erase("00000009") + left.erase("00000009/Current"), 2u);
    }
    EXPECT_EQ(left, kForeign);
    EXPECT_TRUE(LFile::Exists(outside.File("00000001.wav")));
    EXPECT_EQ(m_context.progress.back(), 1.0);
}

TEST_F(DataRemovalTest, AUserForWhomAProgramRunsKeepsAllThatItNeeds) {
    Put({"settings.ini", "00000007/inuse.lck", "00000007/Sent/00000011.wav", "00000009/user.dat"});
    LFileLock other;
    other.TryTake(m_temp.File("00000007/inuse.lck"));
    DataRemoval removal(m_temp.Path());
    EXPECT_EQ(removal.Process(m_context), ProcessResult::Failed);
    EXPECT_EQ(removal.Kept(), 3);
    EXPECT_EQ(m_context.errors.size(), 1u);
    EXPECT_EQ(Left(),
              (std::set<std::string>{"settings.ini", "00000007", "00000007/Current", "00000007/inuse.lck",
                                     "00000007/Sent", "00000007/Sent/00000011.wav"}));
    other.Release();
    m_context.cancelAfter = 1;
    EXPECT_EQ(removal.Process(m_context), ProcessResult::Stopped);
    m_context.cancelAfter = -1;
    EXPECT_EQ(removal.Process(m_context), ProcessResult::Done);
    EXPECT_FALSE(LFile::IsFolder(m_temp.Path()));
}

TEST_F(DataRemovalTest, CountsWhatItWouldDelete) {
    Put(kOurs);
    Put({"00000007/Current/letter.wav", "00000008/user.dat"});
    const auto length = [](const LPath&) { return int32_t{2000000000}; };
    DataCount count(m_temp.Path(), length);
    EXPECT_EQ(count.Process(m_context), ProcessResult::Done);
    const DataContents& found = count.Contents();
    EXPECT_EQ(found.dictations, 4);
    EXPECT_EQ(found.notSent, 2);
    EXPECT_EQ(found.users, 2);
    EXPECT_EQ(found.audioMs, 3 * int64_t{2000000000});
    m_context.cancelAfter = 1;
    EXPECT_EQ(count.Process(m_context), ProcessResult::Stopped);
    EXPECT_EQ(DataCount({}, length).Process(m_context), ProcessResult::Failed);  // cannot be listed
    EXPECT_EQ(m_context.errors.size(), 1u);
}

TEST_F(DataRemovalTest, KnowsWhichFolderMustNotBeLeftBehind) {
    EXPECT_EQ(HoldsDictations({}), Holding::Unknown);
    EXPECT_EQ(HoldsDictations(m_temp.File("none")), Holding::No);
    Put({"00000007/user.dat", "00000007/Sent/letter.wav", "2001/Current/00000012.wav"});
    EXPECT_EQ(HoldsDictations(m_temp.Path()), Holding::No);
    for (const char* file : {"00000007/Sent/00000012.tmp", "00000007/Current/00000012.dat", "settings.ini"}) {
        Put({file});
        EXPECT_EQ(HoldsDictations(m_temp.Path()), Holding::Yes) << file;
        LFile::Delete(m_temp.File(file));
    }
}
