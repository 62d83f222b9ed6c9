#include "base/LProfile.h"

#include <gtest/gtest.h>

#include "tests/unit/TempFolder.h"

// As a Windows binary these tests show that the stand-in and the platform agree.
class ProfileTest : public testing::Test {
protected:
    TempFolder folder;
    const LPath file = folder.File("a.ini");
};

TEST_F(ProfileTest, ReadsWhatPeopleWrite) {
    WriteFileText(file,
                  "stray=1\r\n[One]\r\n; comment=2\r\nplain=value\r\n  Spaced Key =  in the middle  \r\n"
                  "double=\"  kept  \"\r\nsingle='kept'\r\nodd=\"open\r\nempty=\r\nequals=a=b\r\n"
                  "plain=second\r\n\r\n[two]\nplain=other");
    static const char* const kCases[][3] = {
        {"one", "PLAIN", "value"},      {"ONE", "spaced key", "in the middle"},
        {"One", "double", "  kept  "},  {"One", "single", "kept"},
        {"One", "odd", "\"open"},       {"One", "empty", ""},
        {"One", "equals", "a=b"},       {"two", "plain", "other"},
        {"two", "double", "(default)"}, {"one", "stray", "(default)"},
    };
    for (const auto& [section, key, expected] : kCases) {
        EXPECT_EQ(LProfile::Read(file, section, key, "(default)"), expected) << section << key;
        EXPECT_EQ(LProfileSection(file, section).Read(key, "(default)"), expected) << section << key;
    }
}

TEST_F(ProfileTest, ChangesOneKeyAndKeepsTheOthers) {
    EXPECT_TRUE(LProfile::Write(file, "one", "a", "1"));
    EXPECT_TRUE(LProfile::Write(file, "two", "a", "2"));
    EXPECT_TRUE(LProfile::Write(file, "one", "b", "3"));
    EXPECT_TRUE(LProfile::Write(file, "ONE", "A", "4"));
    EXPECT_TRUE(LProfile::Delete(file, "one", "b"));
    EXPECT_EQ(LProfile::Read(file, "one", "a", ""), "4");
    EXPECT_EQ(LProfile::Read(file, "one", "b", "gone"), "gone");
    EXPECT_EQ(LProfile::Read(file, "two", "a", ""), "2");
    EXPECT_TRUE(LProfile::Write(file, "one", "a", ""));
    EXPECT_EQ(LProfile::Read(file, "one", "a", "default"), "");
    const LProfile::Value values[] = {{"b", "5\n"}, {"C", ""}, {"a", "6"}};
    EXPECT_TRUE(LProfile::WriteValues(file, "one", values));
    EXPECT_EQ(LProfile::Read(file, "one", "a", "") + LProfile::Read(file, "one", "b", ""), "65");
    EXPECT_EQ(LProfile::Read(file, "one", "c", "default"), "");
}

TEST_F(ProfileTest, ATextCannotBecomeALineOfItsOwn) {
    LProfile::Write(file, "file", "sendstatus", "Sending");
    for (const char* text : {"Jo\r\nsendstatus=Sent", "Jo\nsendstatus=Sent", "Jo\r[file]", "Jo\x1A more"}) {
        EXPECT_TRUE(LProfile::Write(file, "file", "name", text));
        EXPECT_EQ(LProfile::Read(file, "file", "name", ""), "Jo");
        EXPECT_EQ(LProfile::Read(file, "file", "sendstatus", ""), "Sending");
    }
    LProfile::Write(file, "file", "name", std::string(1000, 'n'));
    EXPECT_EQ(LProfileSection(file, "file").Read("name", "").size(), LProfile::kMaxText);
}

TEST_F(ProfileTest, ReadsBackWhatWasEntered) {
    for (const char* text :
         {" Dr Jo", "Dr Jo\t", "\"Jo\"", "'Jo'", "\"", "5'", "\"a\" and \"b\"", "a \"b\" c", "  "}) {
        EXPECT_TRUE(LProfile::Write(file, "file", "name", text));
        EXPECT_EQ(LProfile::Read(file, "file", "name", "none"), text);
        EXPECT_EQ(LProfileSection(file, "file").Read("name", "none"), text);
    }
}

TEST_F(ProfileTest, RubbishYieldsDefaults) {
    std::string rubbish;
    for (uint32_t state = 1; rubbish.size() < 200000; state = state * 1664525 + 1013904223)
        rubbish.push_back(static_cast<char>(state >> 24));
    for (const std::string& text : {rubbish, std::string("[settings"), std::string(300000, '[')}) {
        WriteFileText(file, text);
        LProfile::Flush(file);
        EXPECT_EQ(LProfile::Read(file, "settings", "number", "1"), "1");
        EXPECT_EQ(LProfileSection(file, "settings").Read("number", "1"), "1");
    }
    EXPECT_EQ(LProfile::Read(LPath(), "settings", "number", "1"), "1");
    EXPECT_FALSE(LProfile::Write(LPath(), "settings", "number", "1"));
    EXPECT_FALSE(LProfile::Delete(LPath(), "settings", "number")) << "nor in the platform's own file";
    EXPECT_FALSE(LProfile::Write(folder.File("no such folder/a.ini"), "settings", "number", "1"));
}

TEST_F(ProfileTest, ASectionOfManyKeysIsReadWhole) {
    std::string text = "[list]\r\n";
    for (int i = 0; i < 1500; ++i) text += "item" + std::to_string(i) + "=" + std::string(40, 'v') + "\r\n";
    WriteFileText(file, text);
    const LProfileSection section(file, "list");
    EXPECT_EQ(section.Read("item1499", ""), std::string(40, 'v'));
    EXPECT_EQ(section.Read("item1500", "none"), "none");
}
