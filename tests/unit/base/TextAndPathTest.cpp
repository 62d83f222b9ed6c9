#include <gtest/gtest.h>

#include <string>

#include "base/LPath.h"
#include "base/LText.h"
#include "base/LTime.h"

TEST(Text, NumbersStopAtTheFirstOtherCharacterAndNeverOverflow) {
    static const std::pair<const char*, int64_t> kCases[] = {
        {"", 0},
        {" \t-12dB", -12},
        {"+7", 7},
        {"- 5", 0},
        {"007x9", 7},
        {"9223372036854775807", INT64_MAX},
        {"99999999999999999999999", INT64_MAX},
        {"-9223372036854775808", INT64_MIN},
        {"-99999999999999999999999", INT64_MIN},
    };
    for (const auto& [text, expected] : kCases) EXPECT_EQ(LParseInt64(text), expected) << text;
    EXPECT_EQ(LParseInt("4294967296"), INT32_MAX);
    EXPECT_EQ(LParseInt("-4294967296"), INT32_MIN);
}

TEST(Path, RefusesWhatDoesNotFitAndThenNamesNothing) {
    LPath path(std::string(259, 'a'));
    EXPECT_EQ(path.View().size(), 259u);
    EXPECT_FALSE(path.Append("b"));
    EXPECT_TRUE(path.Empty());
    EXPECT_TRUE(LPath::Join(std::string(258, 'a'), "b").Empty());
    EXPECT_EQ(LPath::Join(std::string(257, 'a'), "b").View().size(), 259u);
    EXPECT_TRUE(LPath::Format("%s.wav", std::string(256, 'a').c_str()).Empty());
    EXPECT_TRUE(LPath(std::string_view("a\0b", 3)).Empty());
    EXPECT_TRUE(path.Set("C:\\a\\b.wav") && path.Set(path.View().substr(2)) && path.Append(path.View()));
    EXPECT_EQ(path.View(), "\\a\\b.wav\\a\\b.wav") << "changed through a view of itself";
}

TEST(Path, JoinsWithOneSeparator) {
    for (const char* folder : {"C:\\a", "C:\\a\\"}) EXPECT_EQ(LPath::Join(folder, "b").View(), "C:\\a\\b");
    EXPECT_EQ(LPath::Join("C:/a/", "\\b").View(), "C:/a/b");
    EXPECT_EQ(LPath::Join("", "b").View(), "b");
}

// The second byte of a character of two may be a backslash.
TEST(Path, AreWalkedByCharacters) {
    if (!LIsLeadByte('\x83')) GTEST_SKIP() << "not in this code page";
    EXPECT_EQ(LPath::Join("C:\\\x83\\", "a").View(), "C:\\\x83\\\\a");
    EXPECT_EQ(LPath("C:\\\x83\\").WithoutSeparator().View(), "C:\\\x83\\");
    EXPECT_EQ(LFolderOf("C:\\a\\\x83\\.b"), "C:\\a\\");
    EXPECT_TRUE(!LHoldsAny("\x83|", "|:") && LHoldsAny("\x83\x83|", "|:") && LHoldsAny("\x83:", "|:"));
    EXPECT_EQ(LRootOf("\\\\\x83\\s\\t\\u").View(), "\\\\\x83\\s\\t\\");
}

TEST(Path, FindsTheRootOfADriveOrShare) {
    static const char* const kCases[][3] = {
        {"C:\\a\\b\\", "C:\\", "C:\\a\\b"},
        {"C:\\", "C:\\", "C:\\"},
        {"\\\\server\\share\\a", "\\\\server\\share\\", "\\\\server\\share\\a"},
        {"\\\\server\\share", "\\\\server\\share\\", "\\\\server\\share"},
        {"a/", "\\", "a"},
        {"\\", "\\", "\\"},
    };
    for (const auto& [path, root, withoutSeparator] : kCases) {
        EXPECT_EQ(LRootOf(path).View(), root);
        EXPECT_EQ(LPath(path).WithoutSeparator().View(), withoutSeparator);
    }
}

TEST(Path, SplitsIntoPiecesThatMakeItUpAgain) {
    static const char* const kCases[][5] = {
        {"C:\\a.b\\c.d.wav", "C:", "\\a.b\\", "c.d", ".wav"},
        {"C:\\a.b\\c", "C:", "\\a.b\\", "c", ""},
        {"C:x", "C:", "", "x", ""},
        {"/a/b\\c.", "", "/a/b\\", "c", "."},
        {"C:\\folder\\", "C:", "\\folder\\", "", ""},
    };
    for (const auto& [path, drive, folder, name, extension] : kCases) {
        const auto is = LSplitPath(path);
        EXPECT_TRUE(is.drive == drive && is.folder == folder && is.name == name && is.extension == extension)
            << path;
        EXPECT_EQ(std::string(LFolderOf(path)) + std::string(LFileNameOf(path)), path);
    }
    EXPECT_EQ(LPath("C:\\a.b\\c").WithExtension(".wav").View(), "C:\\a.b\\c.wav");
    EXPECT_EQ(LPath("C:\\a.b\\c.dat").WithExtension(".wav").View(), "C:\\a.b\\c.wav");
    EXPECT_TRUE(LPath(std::string(258, 'a')).WithExtension(".wav").Empty());
}

TEST(Time, CalendarKnowsLeapYearsAndHoldsItsLimits) {
    static const std::pair<int64_t, const char*> kCases[] = {
        {-1, "1969-12-31 3 23:59:59"},         {951782400, "2000-02-29 2 00:00:00"},
        {951868800, "2000-03-01 3 00:00:00"},  {4107542399, "2100-02-28 0 23:59:59"},
        {4107542400, "2100-03-01 1 00:00:00"}, {INT64_MIN, "1601-01-01 1 00:00:00"},
        {INT64_MAX, "9999-12-31 5 23:59:59"},
    };
    for (const auto& [seconds, text] : kCases) {
        const LCalendar t = LToCalendar(seconds);
        EXPECT_EQ(LFormat("%04d-%02d-%02d %d %02d:%02d:%02d", t.year, t.month, t.day, t.weekday, t.hour,
                          t.minute, t.second),
                  text);
    }
}
