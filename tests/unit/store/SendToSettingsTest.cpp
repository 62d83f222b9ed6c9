#include "store/SendToSettings.h"

#include "store/SettingsKeys.h"
#include "tests/unit/store/StoreTest.h"

namespace {

class SendToSettingsTest : public StoreTest {
protected:
    // Each text filled to its last byte with a letter of its own, or ended there.
    static Bytes FullRecord(uint8_t version, bool isEnded = false) {
        Bytes bytes = {version, 0, 0, 0};
        if (version != 0) bytes.insert(bytes.end(), {3, 0, 0, 0});
        static const std::pair<size_t, uint8_t> kFields[] = {{32, 'n'},  {1, 2},     {3, 0},     {128, 'e'},
                                                             {256, 'f'}, {128, 'h'}, {32, 'u'},  {32, 'p'},
                                                             {256, 'F'}, {64, 'k'},  {1024, 'w'}};
        for (const auto& [count, letter] : kFields) {
            if (letter == 'k' && version == 0) continue;
            bytes.insert(bytes.end(), count, letter);
            if (isEnded && letter >= 'A' && letter != 'w') bytes.back() = 0;
        }
        return bytes;
    }

    static bool Load(SendToSettings& settings, std::span<const uint8_t> bytes) {
        LMemoryFile file(bytes);
        return settings.Load(file);
    }
};

TEST_F(SendToSettingsTest, EveryTextEndsWithinItsField) {
    SendToSettings read;
    ASSERT_TRUE(Load(read, FullRecord(1)));
    EXPECT_EQ(read.ToBytes(), FullRecord(1, true));
    EXPECT_TRUE(read.Encrypts() && read.SendsWave());
    EXPECT_EQ(read.folder, std::string(255, 'f'));
    ASSERT_TRUE(Load(read, FullRecord(0)));
    EXPECT_EQ(read.encryptionPassword, "");
    EXPECT_EQ(read.flags, 0u);
    EXPECT_EQ(read.waveFormat.Bytes().back(), 'w');
}

TEST_F(SendToSettingsTest, RefusesWhatItCannotReadAndKeepsItsValues) {
    const Bytes full = FullRecord(1), old = FullRecord(0);
    Bytes newer = full;
    newer[0] = 2;
    SendToSettings kept;
    TraceLog log;
    EXPECT_FALSE(Load(kept, newer));
    EXPECT_TRUE(log.Has("SendToSettings::Load Attempting to load an unsupported version file"));
    EXPECT_FALSE(kept.Load(m_temp.File("none.dat")));
    EXPECT_TRUE(log.Has("SendToSettings::Load unable to open file"));
    for (size_t size = 0; size < full.size(); ++size) {
        EXPECT_FALSE(Load(kept, std::span(full).first(size))) << size;
        EXPECT_TRUE(size >= old.size() || !Load(kept, std::span(old).first(size))) << size;
    }
    EXPECT_TRUE(log.Has("SendToSettings::Load file too short"));
    EXPECT_EQ(kept.ToBytes(), SendToSettings().ToBytes());
}

TEST_F(SendToSettingsTest, SavingReplacesTheFileAndReadsBack) {
    const LPath path = RecipientPath(m_data.folder, 7, 0);
    WriteFileText(path, std::string(5000, 'x'));
    SendToSettings saved;
    saved.folder = std::string(300, 'f');
    saved.waveFormat = LWaveFileFormat::Pcm(16, 2, 44100);
    ASSERT_TRUE(saved.Save(path));
    SendToSettings read;
    ASSERT_TRUE(read.Load(path));
    EXPECT_EQ(read.folder.size(), 255u) << "what is too long is cut, never spilt into the next field";
    EXPECT_EQ(read.ToBytes(), saved.ToBytes());
    EXPECT_EQ(CountFiles(UserFolderPath(m_data.folder, 7)), 1u);
    EXPECT_FALSE(saved.Save(RecipientPath(m_data.folder, 8, 0))) << "no such folder";
}

TEST_F(SendToSettingsTest, TheDescriptionNamesTheAddressOfTheMethod) {
    SendToSettings jo;
    jo.method = 0;
    jo.name = "Jo";
    jo.emailAddress = "jo@a";
    jo.folder = "X:\\in";
    jo.ftpHost = "hostA";
    for (const char* expected : {"Jo (jo@a)", "Jo (X:\\in)", "Jo (hostA)", "Jo (undefined method)"}) {
        EXPECT_EQ(DescribeRecipient(jo, false), expected);
        ++jo.method;
    }
    EXPECT_EQ(DescribeRecipient(jo, true), "Jo DEFAULT (undefined method)");
}

TEST_F(SendToSettingsTest, NobodyIsTheDefaultWhenItPointsPastTheEnd) {
    static const std::tuple<int32_t, int32_t, std::optional<int32_t>> kCases[] = {
        {0, 0, {}}, {1, 0, 0}, {3, 2, 2}, {3, 3, {}}, {3, -1, {}}, {-5, 0, {}}};
    for (const auto& [count, standard, expected] : kCases) {
        Settings::Write(m_user.userFile, UserKeys::kSendCount, count);
        Settings::Write(m_user.userFile, UserKeys::kSendDefault, standard);
        EXPECT_EQ(DefaultRecipientIndex(m_user.userFile), expected) << count << " " << standard;
    }
}

}  // namespace
