#include "base/LProfile.h"
#include "store/DataRemoval.h"
#include "store/DictationRecord.h"
#include "store/MoveToSent.h"
#include "store/Settings.h"
#include "tests/unit/store/StoreTest.h"
#include "tests/win/HeldFile.h"

namespace {

class HeldDictationTest : public StoreTest {
protected:
    HeldDictationTest() { MakeFiles(Current(12), "new"); }
    MoveToSent move{m_user, Current(12).record, [](const LPath&) { return QueueAnswer::No; }};
};

}  // namespace

TEST_F(HeldDictationTest, AHeldRecordIsNeitherEmptyNorWritten) {
    const HeldFile held(Current(12).record);
    EXPECT_EQ(DictationRecord::Read(Current(12).record, 0).result, LReadResult::Unreadable);
    EXPECT_FALSE(StoreName(Current(12).record, "x"));
    EXPECT_FALSE(move.Run("Jo", 1));
    EXPECT_EQ(CountFiles(m_user.currentFolder), 3u);
}

TEST_F(HeldDictationTest, WhoeverHoldsAFileForAMomentIsWaitedFor) {
    {
        const BrieflyHeldFile held(Current(12).record);
        EXPECT_EQ(DictationRecord::Read(Current(12).record).number, 12);
    }
    {
        const BrieflyHeldFile held(Current(12).audio);
        EXPECT_TRUE(move.Run("Jo", 1));
    }
    const BrieflyHeldFile held(LPath::Join(LFolderOf(m_user.userFile.View()), "moving.txt"));
    move.Commit();
    EXPECT_TRUE(LFile::IsAbsent(LPath::Join(LFolderOf(m_user.userFile.View()), "moving.txt")));
    EXPECT_EQ(CountFiles(m_user.sentFolder), 3u);
}

// A journal that outlives its commit must not take the dictation back.
TEST_F(HeldDictationTest, AJournalThatCannotBeDeletedIsNotActedOn) {
    ASSERT_TRUE(move.Run("Jo", 1));
    HeldFile held(LPath::Join(LFolderOf(m_user.userFile.View()), "moving.txt"));
    move.Commit();
    held.LetGo();
    EXPECT_TRUE(MoveToSent::TakeUp(m_user, [](const LPath&) { return QueueAnswer::No; }));
    EXPECT_EQ(CountFiles(m_user.sentFolder), 3u);
}

TEST_F(HeldDictationTest, AReadOnlyRecordIsRefusedBeforeAnythingMoves) {
    SetFileAttributesA(Current(12).record.c_str(), FILE_ATTRIBUTE_READONLY);
    EXPECT_FALSE(move.Run("Jo", 1));
    EXPECT_NE(std::string(move.Reason()).find("write-protected"), std::string::npos);
    EXPECT_EQ(CountFiles(m_user.currentFolder), 3u);
    SetFileAttributesA(Current(12).record.c_str(), FILE_ATTRIBUTE_NORMAL);
}

// A file that is held at the reading and free at the writing must not cost an item.
TEST_F(HeldDictationTest, AnItemOfAListMovesOnceItCanBeRead) {
    const LPath& file = m_data.settingsFile;
    WriteFileText(file, "[s]\r\na0=x\r\na1=y\r\n");
    const auto value = [&](const char* key) { return LProfileSection(file, "s").Read(key, "none"); };
    {
        const BrieflyHeldFile held(file);
        EXPECT_TRUE(Settings::MoveListItem(file, "s", "a", 0, 1));
    }
    EXPECT_EQ(value("a0"), "y");
    EXPECT_EQ(value("a1"), "none");
    {
        const HeldFile held(file);
        EXPECT_FALSE(Settings::MoveListItem(file, "s", "a", 1, 0));
    }
    EXPECT_EQ(value("a0"), "y");
}

TEST_F(HeldDictationTest, ARemovalKeepsADictationWithItsAudio) {
    WriteFileText(m_user.userFile, "");
    const HeldFile held(Current(12).audio);
    NotingContext context;
    EXPECT_EQ(DataRemoval(m_temp.Path()).Process(context), ProcessResult::Failed);
    EXPECT_EQ(CountFiles(m_user.currentFolder), 3u);
}
