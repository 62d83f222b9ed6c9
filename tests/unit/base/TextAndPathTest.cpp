#include <gtest/gtest.h>

#include <string>

#include "base/LPath.h"
#include "base/LText.h"
#include "base/LTime.h"

TEST(Text, NumbersStopAtTheFirstOtherCharacterAndNeverOverflow) {
    static const struct {
        const char* text;
        int64_t expected;
    } kCases[] = {
        {"", 0},
        {"abc", 0},
        {" \t-12dB", -12},
        {"+7", 7},
        {"- 5", 0},
        {"007x9", 7},
        {"9223372036854775807", INT64_MAX},
        {"99999999999999999999999", INT64_MAX},
        {"-9223372036854775808", INT64_MIN},
        {"-99999999999999999999999", INT64_MIN},
    };
    for (const auto& c : kCases) EXPECT_EQ(LParseInt64(c.text), c.expected) << c.text;
    EXPECT_EQ(LParseInt("4294967296"), INT32_MAX);
    EXPECT_EQ(LParseInt("-4294967296"), INT32_MIN);
}

TEST(Path, RefusesWhatDoesNotFitAndThenNamesNothing) {
    LPath path(std::string(259, 'a'));
    EXPECT_EQ(path.View().size(), 259u);
    EXPECT_FALSE(path.Append("b"));
    EXPECT_TRUE(path.Empty());
    EXPECT_FALSE(path.Set(std::string(260, 'a')));
    EXPECT_TRUE(LPath::Join(std::string(258, 'a'), "b").Empty());
    EXPECT_EQ(LPath::Join(std::string(257, 'a'), "b").View().size(), 259u);
    EXPECT_TRUE(LPath::Format("%s.wav", std::string(256, 'a').c_str()).Empty());
    EXPECT_TRUE(LPath(std::string_view("a\0b", 3)).Empty());
}

TEST(Path, IsChangedThroughAViewOfItself) {
    LPath path("C:\\a\\b.wav");
    EXPECT_TRUE(path.Set(LFolderOf(path.View())));
    EXPECT_EQ(path.View(), "C:\\a\\");
    EXPECT_TRUE(path.Append(path.View()));
    EXPECT_EQ(path.View(), "C:\\a\\C:\\a\\");
}

TEST(Path, JoinsWithOneSeparator) {
    static const struct {
        const char* folder;
        const char* name;
        const char* expected;
    } kCases[] = {
        {"C:\\a", "b", "C:\\a\\b"}, {"C:\\a\\", "b", "C:\\a\\b"},
        {"C:/a/", "\\b", "C:/a/b"}, {"", "b", "b"},
        {"C:\\", "b", "C:\\b"},     {"\\\\server\\share", "b", "\\\\server\\share\\b"},
    };
    for (const auto& c : kCases) EXPECT_EQ(LPath::Join(c.folder, c.name).View(), c.expected);
}

TEST(Path, SplitsIntoPiecesThatMakeItUpAgain) {
    static const struct {
        const char* path;
        const char* drive;
        const char* folder;
        const char* name;
        const char* extension;
    } kCases[] = {
        {"C:\\a.b\\c.d.wav", "C:", "\\a.b\\", "c.d", ".wav"},
        {"C:\\a.b\\c", "C:", "\\a.b\\", "c", ""},
        {"C:x", "C:", "", "x", ""},
        {"/a/b\\c.", "", "/a/b\\", "c", "."},
        {"name.ext", "", "", "name", ".ext"},
        {"C:\\folder\\", "C:", "\\folder\\", "", ""},
        {"", "", "", "", ""},
    };
    for (const auto& c : kCases) {
        const LPathParts parts = LSplitPath(c.path);
        EXPECT_EQ(parts.drive, c.drive) << c.path;
        EXPECT_EQ(parts.folder, c.folder) << c.path;
        EXPECT_EQ(parts.name, c.name) << c.path;
        EXPECT_EQ(parts.extension, c.extension) << c.path;
        EXPECT_EQ(std::string(LFolderOf(c.path)) + std::string(LFileNameOf(c.path)), c.path);
    }
    EXPECT_EQ(LPath("C:\\a.b\\c").WithExtension(".wav").View(), "C:\\a.b\\c.wav");
    EXPECT_EQ(LPath("C:\\a.b\\c.dat").WithExtension(".wav").View(), "C:\\a.b\\c.wav");
    EXPECT_TRUE(LPath(std::string(258, 'a')).WithExtension(".wav").Empty());
}

TEST(Time, CalendarKnowsLeapYearsAndHoldsItsLimits) {
    static const struct {
        int64_t seconds;
        int year, month, day, weekday, hour, minute, second;
    } kCases[] = {
        {0, 1970, 1, 1, 4, 0, 0, 0},
        {-1, 1969, 12, 31, 3, 23, 59, 59},
        {951782400, 2000, 2, 29, 2, 0, 0, 0},
        {951868800, 2000, 3, 1, 3, 0, 0, 0},
        {1109635199, 2005, 2, 28, 1, 23, 59, 59},
        {4107542399, 2100, 2, 28, 0, 23, 59, 59},
        {4107542400, 2100, 3, 1, 1, 0, 0, 0},
        {INT64_MIN, 1601, 1, 1, 1, 0, 0, 0},
        {INT64_MAX, 9999, 12, 31, 5, 23, 59, 59},
    };
    for (const auto& c : kCases) {
        const LCalendar is = LToCalendar(c.seconds);
        EXPECT_EQ(is.year, c.year) << c.seconds;
        EXPECT_EQ(is.month, c.month) << c.seconds;
        EXPECT_EQ(is.day, c.day) << c.seconds;
        EXPECT_EQ(is.weekday, c.weekday) << c.seconds;
        EXPECT_EQ(is.hour, c.hour) << c.seconds;
        EXPECT_EQ(is.minute, c.minute) << c.seconds;
        EXPECT_EQ(is.second, c.second) << c.seconds;
    }
}
