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
    EXPECT_EQ(DataFolder::FromText("D:/data/").settingsFile.View(), "D:/data/settings.ini");
    EXPECT_TRUE(DataFolder::FromText(std::string(259, 'a')).settingsFile.Empty());
    EXPECT_TRUE(DataFolder::FromText(std::string(215, 'a')).HasRoom());
    EXPECT_FALSE(DataFolder::FromText(std::string(216, 'a')).HasRoom());
}

TEST_F(CurrentUserTest, AddingAUserKeepsWhatHisFoldersHold) {
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

TEST_F(CurrentUserTest, TheRegistryWinsOverTheSettingsFile) {
    SetCurrentUser(m_data.settingsFile, 4294967295u);
    EXPECT_EQ(Settings::Read(m_data.settingsFile, SettingsKeys::kCurrentUser), -1);
    EXPECT_EQ(GetCurrentUser(m_data.settingsFile), 4294967295u);
    WriteRegistryUser(3);
    EXPECT_EQ(GetCurrentUser(m_data.settingsFile), 3u);
}

TEST_F(CurrentUserTest, TheListOfUsersIsImpliedUntilItIsWrittenAndNeverTrusted) {
    const LPath& file = m_data.settingsFile;
    using Users = std::vector<uint32_t>;
    EXPECT_EQ(ReadUserList(file), Users{0});
    for (uint32_t user : {3000000000u, 5u, 5u}) AddUserToList(file, user);
    EXPECT_EQ(ReadUserList(file), (Users{0, 3000000000u, 5}));
    for (uint32_t user : {0u, 99u}) RemoveUserFromList(file, user);
    EXPECT_EQ(ReadUserList(file), (Users{3000000000u, 5}));
    for (uint32_t user : {5u, 3000000000u}) RemoveUserFromList(file, user);
    EXPECT_EQ(ReadUserList(file), Users{0});
    static const struct {
        const char* text;
        Users expected, withoutFour;
    } kCases[] = {
        {"count=2000000000\r\nuser0=4\r\nuser1=6", {4, 6}, {6}},
        {"count=-3", {0}, {0}},
        {"count=4\r\nuser0=4\r\nuser2=6\r\nuser3=8", {4, 6, 8}, {6, 8}},  // cut off while others moved down
        {"count=4\r\nuser0=4\r\nuser1=4\r\nuser2=6\r\nuser3=6", {4, 6}, {6}},
    };
    for (const auto& c : kCases) {
        WriteFileText(file, std::string("[users]\r\n") + c.text + "\r\n");
        LProfile::Flush(file);
        EXPECT_EQ(ReadUserList(file), c.expected);
        RemoveUserFromList(file, 4);
        EXPECT_EQ(ReadUserList(file), c.withoutFour) << c.text;
    }
}

TEST_F(CurrentUserTest, AnItemMovesWithAnEmptyValueAndNeverComesFromNowhere) {
    const LPath& file = m_data.settingsFile;
    WriteFileText(file, "[s]\r\na0=x\r\na1=\r\na3=\r\n");
    LProfile::Flush(file);
    Settings::MoveListItem(file, "s", "a", 0, 1);
    Settings::MoveListItem(file, "s", "a", 3, 2);
    EXPECT_EQ(LProfile::Read(file, "s", "a0", "none"), "");
    for (const char* key : {"a1", "a2", "a3"})
        EXPECT_EQ(LProfile::Read(file, "s", key, "none"), "none") << key;
}
