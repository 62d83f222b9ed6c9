#include "store/Settings.h"

#include "base/LProfile.h"
#include "store/SettingsKeys.h"
#include "store/SoundInput.h"
#include "tests/unit/store/StoreTest.h"

using SettingsTest = StoreTest;

TEST_F(SettingsTest, IntegersAndBooleansTakeTheirDefaultWhenEmptyOrAbsent) {
    const LPath& file = m_data.settingsFile;
    WriteFileText(file, "[s]\r\nempty=\r\nword=abc\r\nhuge=99999999999\r\nminus= -5 \r\nt=t\r\n");
    static const std::tuple<const char*, int32_t, bool> kCases[] = {
        {"absent", 9, true},        {"empty", 9, false},  {"word", 0, false},
        {"huge", INT32_MAX, false}, {"minus", -5, false}, {"t", 0, true}};
    for (const auto& [key, number, isTrue] : kCases) {
        EXPECT_EQ(Settings::ReadInt(file, "s", key, 9), number) << key;
        EXPECT_EQ(Settings::ReadBool(file, "s", key, true), isTrue) << key;
    }
    LProfile::Write(file, "s", "t", "True");
    EXPECT_FALSE(Settings::ReadBool(file, "s", "t", true));
    Settings::WriteNumber(file, "s", "late", 5000000000);
    EXPECT_EQ(Settings::ReadNumber(file, "s", "late", 0), 5000000000);
}

TEST_F(SettingsTest, TimesAreReducedToADay) {
    const std::pair<const char*, int32_t> cases[] = {
        {"25:00:00", 3600}, {"24:00:00", 86400}, {"1h:2m:3s", 3723},
        {"5", 18000},       {"::7", 7},          {"1:2:3:4", 3600 + 120 + 34},
    };
    for (const auto& [text, expected] : cases) EXPECT_EQ(Settings::ParseTime(text), expected) << text;
    const LPath& file = m_data.settingsFile;
    Settings::WriteTime(file, "s", "time", 3723);
    EXPECT_EQ(LProfile::Read(file, "s", "time", ""), "01:02:03");
    EXPECT_EQ(Settings::ReadTime(file, "s", "none", 60), 60);
    Settings::WriteDateTime(file, "s", "date", 951782400);
    EXPECT_EQ(LProfile::Read(file, "s", "date", ""), "29/02/00-00:00:00");
}

TEST_F(SettingsTest, LevelsKnowSilenceAndSurviveRubbish) {
    const LPath& file = m_data.settingsFile;
    const std::pair<const char*, int8_t> cases[] = {
        {"-20dB", -20},       {"--dB", -127}, {"+6", 6},      {" -3 Db ", -3}, {"-500dB", -127},
        {"99999999999", 127}, {"", -15},      {"loud5", -15}, {"--20", -15},   {"1.5dB", -15},
    };
    for (const auto& [text, expected] : cases) {
        LProfile::Write(file, "s", "level", text);
        EXPECT_EQ(Settings::ReadLevel(file, "s", "level", -15), expected) << text;
    }
    Settings::WriteLevel(file, "s", "level", -20);
    EXPECT_EQ(LProfile::Read(file, "s", "level", ""), "-20dB");
    EXPECT_EQ(LFormatLevel(-127), "--dB");
}

TEST_F(SettingsTest, TheProgramChoosesTheLastLineThatIsNamedLikeAMicrophone) {
    class Lines final : public InputLines {
    public:
        std::vector<std::string> LineNames(int32_t device) override {
            if (device != 2) return {};
            return {"Microphone", "Line In", "CD", "Front mic", "Phone line", "Aux"};
        }
    } lines;
    const LPath& file = m_data.settingsFile;
    EXPECT_EQ(GetSoundIn(file, lines).line, -1);
    WriteFileText(file, "[settings]\r\nsoundin=2\r\ndocksoundin=2\r\n");
    LProfile::Flush(file);
    EXPECT_EQ(GetSoundIn(file, lines).device, 2);
    EXPECT_EQ(GetSoundIn(file, lines).line, 3);
    EXPECT_EQ(GetDockSoundIn(file, lines).line, 4);
    Settings::Write(file, SettingsKeys::kSoundInChan, 0);
    EXPECT_EQ(GetSoundIn(file, lines).line, 0);
}
