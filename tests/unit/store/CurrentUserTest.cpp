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
