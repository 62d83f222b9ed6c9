#include "store/CurrentUser.h"

#include "base/LProfile.h"
#include "store/RegistryUser.h"
#include "store/SettingsKeys.h"
#include "tests/unit/store/StoreTest.h"

// Leaves user 0 in the registry, which as a Windows binary is that of whoever runs the tests.
class CurrentUserTest : public StoreTest {
protected:
    ~CurrentUserTest() override { WriteRegistryUser(0); }
};

TEST(DataFolder, EndsInASeparatorUnlessThereIsNoRoom) {
    EXPECT_EQ(DataFolder::FromText("C:\\Corvane").settingsFile.View(), "C:\\Corvane\\settings.ini");
    EXPECT_EQ(DataFolder::FromText("C:\\Corvane\\").settingsFile.View(), "C:\\Corvane\\settings.ini");
    EXPECT_EQ(DataFolder::FromText("D:/data/").settingsFile.View(), "D:/data/settings.ini");
    EXPECT_EQ(DataFolder::FromText(std::string(258, 'a')).folder.View().size(), 259u);
    EXPECT_EQ(DataFolder::FromText(std::string(259, 'a')).folder.View(), std::string(259, 'a'));
    EXPECT_TRUE(DataFolder::FromText(std::string(259, 'a')).settingsFile.Empty());
}

TEST_F(CurrentUserTest, ThePathsCarryEightDigits) {
    EXPECT_EQ(LFileNameOf(UserFilePath(m_data.folder, 7).View()), "user.dat");
    EXPECT_TRUE(m_user.currentFolder.View().ends_with("00000007\\Current\\"));
    EXPECT_TRUE(m_user.sentFolder.View().ends_with("00000007\\Sent\\"));
    EXPECT_TRUE(UserFolderPath(m_data.folder, 0xFFFFFFFFu).View().ends_with("4294967295\\"));
}

TEST_F(CurrentUserTest, AddingAUserKeepsWhatHisFoldersHold) {
    MakeFiles(Current(12), "kept");
    const CurrentUser added = AddUser(m_data, 7, "Dr Jo\r\ncompany=x", "jo@example.org");
    EXPECT_EQ(CountFiles(added.currentFolder), 3u);
    EXPECT_EQ(added.details.name, "Dr Jo");
    EXPECT_EQ(added.details.email, "jo@example.org");
    EXPECT_EQ(added.details.company, "");
    EXPECT_EQ(GetCurrentUser(m_data.settingsFile), 7u);
    EXPECT_EQ(UserName(m_data.folder, 7), "Dr Jo");
    EXPECT_EQ(UserName(m_data.folder, 8), "User 8");
}

TEST_F(CurrentUserTest, TheRegistryWinsOverTheSettingsFile) {
    SetCurrentUser(m_data.settingsFile, 4294967295u);
    EXPECT_EQ(Settings::Read(m_data.settingsFile, SettingsKeys::kCurrentUser), -1);
    EXPECT_EQ(GetCurrentUser(m_data.settingsFile), 4294967295u);
    WriteRegistryUser(3);
    EXPECT_EQ(GetCurrentUser(m_data.settingsFile), 3u);
}

TEST_F(CurrentUserTest, TheListOfUsersIsImpliedUntilItIsWritten) {
    const LPath& file = m_data.settingsFile;
    using Users = std::vector<uint32_t>;
    EXPECT_EQ(ReadUserList(file), Users{0});
    AddUserToList(file, 3000000000u);
    AddUserToList(file, 5);
    AddUserToList(file, 5);
    EXPECT_EQ(ReadUserList(file), (Users{0, 3000000000u, 5}));
    RemoveUserFromList(file, 0);
    RemoveUserFromList(file, 99);
    EXPECT_EQ(ReadUserList(file), (Users{3000000000u, 5}));
    EXPECT_EQ(LProfile::Read(file, "users", "user2", "none"), "none");
    RemoveUserFromList(file, 5);
    RemoveUserFromList(file, 3000000000u);
    EXPECT_EQ(ReadUserList(file), Users{0});
}

TEST_F(CurrentUserTest, AnAbsurdCountOfUsersReadsAsFarAsThereAreItems) {
    WriteFileText(m_data.settingsFile, "[users]\r\ncount=2000000000\r\nuser0=4\r\nuser1=6\r\n");
    EXPECT_EQ(ReadUserList(m_data.settingsFile), (std::vector<uint32_t>{4, 6}));
    WriteFileText(m_data.settingsFile, "[users]\r\ncount=-3\r\n");
    LProfile::Flush(m_data.settingsFile);
    EXPECT_EQ(ReadUserList(m_data.settingsFile), std::vector<uint32_t>{0});
}
