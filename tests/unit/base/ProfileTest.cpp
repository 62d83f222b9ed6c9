#include "base/LProfile.h"

#include <gtest/gtest.h>

#include "tests/unit/TempFolder.h"

// As a Windows binary these tests show that the stand-in and the platform agree.

TEST(Profile, ReadsWhatPeopleWrite) {
    TempFolder folder;
    const LPath file = folder.File("a.ini");
    WriteFileText(file,
                  "stray=1\r\n[One]\r\n; comment=2\r\nplain=value\r\n  Spaced Key =  in the middle  \r\n"
                  "double=\"  kept  \"\r\nsingle='kept'\r\nodd=\"open\r\nempty=\r\nequals=a=b\r\n"
                  "plain=second\r\n\r\n[two]\nplain=other");
    static const struct {
        const char *section, *key, *expected;
    } kCases[] = {
        {"one", "PLAIN", "value"},       {"ONE", "spaced key", "in the middle"},
        {"One", "double", "  kept  "},   {"One", "single", "kept"},
        {"One", "odd", "\"open"},        {"One", "empty", ""},
        {"One", "equals", "a=b"},        {"two", "plain", "other"},
        {"two", "double", "(default)"},  {"one", "stray", "(default)"},
        {"three", "plain", "(default)"},
    };
    for (const auto& c : kCases) {
        EXPECT_EQ(LProfile::Read(file, c.section, c.key, "(default)"), c.expected) << c.section << c.key;
        EXPECT_EQ(LProfileSection(file, c.section).Read(c.key, "(default)"), c.expected)
            << c.section << c.key;
    }
}

TEST(Profile, ChangesOneKeyAndKeepsTheOthers) {
    TempFolder folder;
    const LPath file = folder.File("a.ini");
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
}

TEST(Profile, ATextCannotBecomeALineOfItsOwn) {
    TempFolder folder;
    const LPath file = folder.File("a.ini");
    LProfile::Write(file, "file", "sendstatus", "Sending");
    for (const char* text : {"Jo\r\nsendstatus=Sent", "Jo\nsendstatus=Sent", "Jo\r[file]", "Jo\x1A more"}) {
        EXPECT_TRUE(LProfile::Write(file, "file", "name", text));
        EXPECT_EQ(LProfile::Read(file, "file", "name", ""), "Jo");
        EXPECT_EQ(LProfile::Read(file, "file", "sendstatus", ""), "Sending");
    }
    LProfile::Write(file, "file", "name", std::string(1000, 'n'));
    EXPECT_EQ(LProfile::Read(file, "file", "name", "").size(), LProfile::kMaxText);
    EXPECT_EQ(LProfileSection(file, "file").Read("name", "").size(), LProfile::kMaxText);
}

TEST(Profile, ReadsBackWhatWasEntered) {
    TempFolder folder;
    const LPath file = folder.File("a.ini");
    for (const char* text :
         {" Dr Jo", "Dr Jo\t", "\"Jo\"", "'Jo'", "\"", "5'", "\"a\" and \"b\"", "a \"b\" c", "  "}) {
        EXPECT_TRUE(LProfile::Write(file, "file", "name", text));
        EXPECT_EQ(LProfile::Read(file, "file", "name", "none"), text);
        EXPECT_EQ(LProfileSection(file, "file").Read("name", "none"), text);
    }
}

TEST(Profile, RubbishYieldsDefaults) {
    TempFolder folder;
    const LPath file = folder.File("a.ini");
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
    EXPECT_FALSE(LProfile::Write(folder.File("no such folder/a.ini"), "settings", "number", "1"));
}

TEST(Profile, ASectionOfManyKeysIsReadWhole) {
    TempFolder folder;
    std::string text = "[list]\r\n";
    for (int i = 0; i < 1500; ++i) text += "item" + std::to_string(i) + "=" + std::string(40, 'v') + "\r\n";
    WriteFileText(folder.File("a.ini"), text);
    const LProfileSection section(folder.File("a.ini"), "list");
    EXPECT_EQ(section.Read("item1499", ""), std::string(40, 'v'));
    EXPECT_EQ(section.Read("item1500", "none"), "none");
}
