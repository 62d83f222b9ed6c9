#include "store/SendToSettings.h"

#include <cstring>

#include "base/LMemoryFile.h"
#include "base/LTrace.h"
#include "store/SettingsKeys.h"
#include "tests/unit/store/StoreTest.h"

namespace {

std::string s_line;

class SendToSettingsTest : public StoreTest {
protected:
    SendToSettingsTest()
        : m_before(LSetTraceSink([](std::string_view line, std::string_view) { s_line = line; })) {
        s_line.clear();
    }
    ~SendToSettingsTest() override { LSetTraceSink(m_before); }

    // Each field filled to its last byte with a letter of its own: only the forced zeros end the texts.
    static std::vector<uint8_t> FullRecord(uint32_t version) {
        std::vector<uint8_t> bytes = {static_cast<uint8_t>(version), 0, 0, 0};
        const auto fill = [&](size_t count, char c) {
            bytes.insert(bytes.end(), count, static_cast<uint8_t>(c));
        };
        if (version != 0) bytes.insert(bytes.end(), {0xFF, 0xFF, 0xFF, 0xFF});
        fill(32, 'n');
        bytes.insert(bytes.end(), {2, 0, 0, 0});
        fill(128, 'e');
        fill(256, 'f');
        fill(128, 'h');
        fill(32, 'u');
        fill(32, 'p');
        fill(256, 'F');
        if (version != 0) fill(64, 'k');
        fill(1024, 'w');
        return bytes;
    }

    static bool Load(SendToSettings& settings, std::span<const uint8_t> bytes) {
        LMemoryFile file(bytes);
        return settings.Load(file);
    }

private:
    LTraceSink m_before;
};

TEST_F(SendToSettingsTest, ANewRecordIsUntitledMail) {
    const std::vector<uint8_t> bytes = SendToSettings().ToBytes();
    ASSERT_EQ(bytes.size(), 1964u);
    std::vector<uint8_t> expected(1964);
    expected[0] = 1;
    std::memcpy(&expected[8], "Untitled", 8);
    const uint8_t format[] = {1, 0, 1, 0, 0x40, 0x1F, 0, 0, 0x40, 0x1F, 0, 0, 1, 0, 8, 0, 0, 0};
    std::memcpy(&expected[940], format, sizeof format);
    EXPECT_EQ(bytes, expected);
}

TEST_F(SendToSettingsTest, EveryTextEndsWithinItsField) {
    for (uint32_t version : {0u, 1u}) {
        SendToSettings read;
        ASSERT_TRUE(Load(read, FullRecord(version)));
        EXPECT_EQ(read.name, std::string(31, 'n'));
        EXPECT_EQ(read.method, 2u);
        EXPECT_EQ(read.emailAddress, std::string(127, 'e'));
        EXPECT_EQ(read.folder, std::string(255, 'f'));
        EXPECT_EQ(read.ftpHost, std::string(127, 'h'));
        EXPECT_EQ(read.ftpUser, std::string(31, 'u'));
        EXPECT_EQ(read.ftpPassword, std::string(31, 'p'));
        EXPECT_EQ(read.ftpFolder, std::string(255, 'F'));
        EXPECT_EQ(read.encryptionPassword, std::string(version == 0 ? 0 : 63, 'k'));
        EXPECT_EQ(read.flags, version == 0 ? 0u : SendToSettings::kEncrypt | SendToSettings::kSendWave);
        EXPECT_EQ(read.waveFormat.Bytes().back(), 'w');
    }
}

TEST_F(SendToSettingsTest, RefusesWhatItCannotReadAndKeepsItsValues) {
    const std::vector<uint8_t> full = FullRecord(1);
    const std::vector<uint8_t> old = FullRecord(0);
    std::vector<uint8_t> newer = full;
    newer[0] = 2;
    SendToSettings kept;
    EXPECT_FALSE(Load(kept, newer));
    EXPECT_EQ(s_line, "SendToSettings::Load Attempting to load an unsupported version file");
    EXPECT_FALSE(kept.Load(m_temp.File("none.dat")));
    EXPECT_EQ(s_line, "SendToSettings::Load unable to open file");
    for (size_t size = 0; size < full.size(); ++size) {
        EXPECT_FALSE(Load(kept, std::span(full).first(size))) << size;
        EXPECT_TRUE(size >= old.size() || !Load(kept, std::span(old).first(size))) << size;
    }
    EXPECT_EQ(s_line, "SendToSettings::Load file too short");
    EXPECT_EQ(kept.ToBytes(), SendToSettings().ToBytes());
    EXPECT_EQ(old.size(), 1896u);
    EXPECT_TRUE(Load(kept, old));
}

TEST_F(SendToSettingsTest, SavingReplacesTheFileAndReadsBack) {
    const LPath path = RecipientPath(m_data.folder, 7, 0);
    WriteFileText(path, std::string(5000, 'x'));
    SendToSettings saved;
    saved.flags = SendToSettings::kEncrypt;
    saved.name = "Jo";
    saved.folder = std::string(300, 'f');
    saved.waveFormat = LWaveFileFormat::Pcm(16, 2, 44100);
    ASSERT_TRUE(saved.Save(path));
    SendToSettings read;
    ASSERT_TRUE(read.Load(path));
    EXPECT_TRUE(read.Encrypts() && !read.SendsWave());
    EXPECT_EQ(read.folder.size(), 255u) << "what is too long is cut, never spilt into the next field";
    EXPECT_EQ(read.waveFormat.AverageBytesPerSecond(), 176400u);
    EXPECT_EQ(read.ToBytes(), saved.ToBytes());
    EXPECT_EQ(CountFiles(UserFolderPath(m_data.folder, 7)), 1u);
    EXPECT_FALSE(saved.Save(RecipientPath(m_data.folder, 8, 0))) << "no such folder";
}

TEST_F(SendToSettingsTest, TheDescriptionNamesTheAddressOfTheMethod) {
    SendToSettings jo;
    jo.name = "Jo";
    jo.emailAddress = "jo@a";
    jo.folder = "X:\\in";
    jo.ftpHost = "hostA";
    static const struct {
        uint32_t method;
        bool isDefault;
        const char* expected;
    } kCases[] = {
        {0, false, "Jo (jo@a)"},
        {1, true, "Jo DEFAULT (X:\\in)"},
        {2, true, "Jo DEFAULT (hostA)"},
        {2, false, "Jo (hostA)"},
        {3, false, "Jo (undefined method)"},
        {0xFFFFFFFF, true, "Jo DEFAULT (undefined method)"},
    };
    for (const auto& c : kCases) {
        jo.method = c.method;
        EXPECT_EQ(DescribeRecipient(jo, c.isDefault), c.expected);
    }
}

TEST_F(SendToSettingsTest, NobodyIsTheDefaultWhenItPointsPastTheEnd) {
    static const struct {
        int32_t count, standard;
        std::optional<int32_t> expected;
    } kCases[] = {{0, 0, {}}, {1, 0, 0}, {3, 2, 2}, {3, 3, {}}, {3, -1, {}}, {-5, 0, {}}};
    for (const auto& c : kCases) {
        Settings::Write(m_user.userFile, UserKeys::kSendCount, c.count);
        Settings::Write(m_user.userFile, UserKeys::kSendDefault, c.standard);
        EXPECT_EQ(DefaultRecipient(m_user.userFile), c.expected) << c.count << " " << c.standard;
    }
}

}  // namespace
