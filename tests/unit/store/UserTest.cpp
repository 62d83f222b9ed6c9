#include "store/UserList.h"

#include "base/LFileLock.h"
#include "base/LLeftOver.h"
#include "base/LProfile.h"
#include "store/RegistryUser.h"
#include "store/SettingsKeys.h"
#include "tests/unit/store/StoreTest.h"

// Leaves user 0 in the registry, which as a Windows binary is that of whoever runs the tests. The folder of
// user 7 exists.
class UserTest : public StoreTest {
protected:
    ~UserTest() override { WriteRegistryUser(0); }
    std::string List() const {
        std::string text;
        for (const OfferedUser& user : OfferedUsers(m_data, 7)) text += user.name + ";";
        return text;
    }
};

TEST_F(UserTest, ItIsNeverTrustedAndAUserLeavesItWithoutTakingOthersAlong) {
    const LPath& file = m_data.settingsFile;
    using Users = std::vector<uint32_t>;
    using enum UserRemoval;
    static const struct {
        const char* text;
        Users listed;
        uint32_t removed;
        UserRemoval result;
        Users remaining;
        uint32_t next;
    } kCases[] = {
        {"", {7}, 7, IsLast, {7}, 7},
        {"count=-3", {7}, 7, IsLast, {7}, 7},
        {"count=1", {0}, 0, IsLast, {0}, 7},
        {"count=1", {0}, 7, Removed, {0}, 0},  // another session had removed him already
        {"count=2 user1=7", {0, 7}, 7, Removed, {0}, 0},
        {"count=3 user0=7 user1=4294967295 user2=5", {7, ~0u, 5}, 7, Removed, {~0u, 5}, ~0u},
        {"count=2000000000 user0=4 user1=6", {4, 6}, 4, Removed, {6}, 7},
        // Cut off while moving.
        {"count=4 user0=4 user2=6 user3=8", {4, 6, 8}, 4, Removed, {6, 8}, 7},
        {"count=4 user0=4 user1=4 user2=6 user3=6", {4, 6}, 4, Removed, {6}, 7},
    };
    for (const auto& c : kCases) {
        std::string text = c.text;
        std::ranges::replace(text, ' ', '\n');
        WriteFileText(file, "[users]\n" + text + "\n");
        LProfile::Flush(file);
        EXPECT_EQ(ReadUserList(file, 7), c.listed) << c.text;
        uint32_t next = 99;
        EXPECT_EQ(RemoveUser(m_data, c.removed, 7, next), c.result) << c.text;
        EXPECT_EQ(ReadUserList(file, 7), c.remaining) << c.text;
        EXPECT_EQ(next, c.next) << c.text;
    }
}

TEST_F(UserTest, ANewUserGetsTheLowestNumberThatNobodyHasOrHad) {
    LFile::MakeFolder(UserFolderPath(m_data.folder, 0));  // of a user who was removed
    EXPECT_EQ(MakeUser(m_data, "Dr Jo", "jo@example.org", 7), 1u);
    EXPECT_EQ(GetCurrentUser(m_data.settingsFile), 1u);
    EXPECT_EQ(MakeUser(m_data, "Dr Jo", "", 1), 2u);
    EXPECT_EQ(List(), "User 7;Dr Jo (1);Dr Jo (2);");
    EXPECT_EQ(UserDetails::Read(UserFilePath(m_data.folder, 1)).email, "jo@example.org");

    LFileLock other;  // another session changes the list
    ASSERT_EQ(other.TryTake(LPath::Join(m_data.folder.View(), LLeftOver::kUsersLock)),
              LFileLock::Result::Taken);
    uint32_t next = 0;
    EXPECT_EQ(MakeUser(m_data, "Dr Mo", "", 1), std::nullopt);
    EXPECT_EQ(RemoveUser(m_data, 2, 1, next), UserRemoval::NotStored);
    EXPECT_EQ(List(), "User 7;Dr Jo (1);Dr Jo (2);");
}

TEST_F(UserTest, AUserWhoCannotBeStoredLeavesNothingBehind) {
    WriteFileText(m_data.settingsFile, "[users]\r\ncount=1\r\nuser0=7\r\n");
    LFile held(m_data.settingsFile, LFile::Open::Alone);
    ASSERT_TRUE(held.IsOpen());
    if (LFile(m_data.settingsFile, LFile::Open::Read).IsOpen()) GTEST_SKIP() << "files cannot be held here";
    EXPECT_EQ(MakeUser(m_data, "Dr Jo", "", 7), std::nullopt);
    held.Close();
    EXPECT_EQ(List(), "User 7;");
    EXPECT_TRUE(LFile::IsAbsent(UserFolderPath(m_data.folder, 0).WithoutSeparator()));
}

TEST(DataFolder, EndsInASeparatorUnlessThereIsNoRoom) {
    EXPECT_EQ(DataFolder::FromText("C:\\Corvane").settingsFile.View(), "C:\\Corvane\\settings.ini");
    EXPECT_EQ(DataFolder::FromText("D:/data/").settingsFile.View(), "D:/data/settings.ini");
    EXPECT_TRUE(DataFolder::FromText(std::string(259, 'a')).settingsFile.Empty());
    EXPECT_TRUE(DataFolder::FromText(std::string(215, 'a')).HasRoom());
    EXPECT_FALSE(DataFolder::FromText(std::string(216, 'a')).HasRoom());
}

TEST_F(UserTest, AddingAUserKeepsWhatHisFoldersHold) {
    EXPECT_TRUE(m_user.sentFolder.View().ends_with("00000007\\Sent\\"));
    EXPECT_TRUE(UserFolderPath(m_data.folder, 0xFFFFFFFFu).View().ends_with("4294967295\\"));
    MakeFiles(Current(12), "kept");
    const CurrentUser added = AddUser(m_data, 7, "Dr Jo\r\ncompany=x", "jo@example.org");
    EXPECT_EQ(CountFiles(added.currentFolder), 3u);
    EXPECT_EQ(added.details.name, "Dr Jo");
    EXPECT_EQ(added.details.email, "jo@example.org");
    EXPECT_EQ(added.details.company, "");
    EXPECT_EQ(GetCurrentUser(m_data.settingsFile), 7u);
}

TEST_F(UserTest, TheRegistryWinsOverTheSettingsFile) {
    SetCurrentUser(m_data.settingsFile, 4294967295u);
    EXPECT_EQ(Settings::Read(m_data.settingsFile, SettingsKeys::kCurrentUser), -1);
    EXPECT_EQ(GetCurrentUser(m_data.settingsFile), 4294967295u);
    WriteRegistryUser(3);
    EXPECT_EQ(GetCurrentUser(m_data.settingsFile), 3u);
}
