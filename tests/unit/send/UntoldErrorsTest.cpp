#include "send/UntoldErrors.h"

#include "tests/unit/TestKit.h"

TEST(UntoldErrorsTest, WhatWasNotAnsweredIsToldByTheNextRun) {
    const TempFolder temp;
    const LPath file = temp.File("untold.txt");
    SendError told;
    {
        UntoldErrors errors;
        errors.KeepIn(file);
        errors.Add({"Why.\n\nSo.", "A", "Typist"});
        told = errors.All();
        for (int i = 0; i < 60; ++i) errors.Add({"Why.\n\nSo.", "B" + std::to_string(i), ""});
        errors.Forget(told);  // came while the box was open: all but the first
    }
    UntoldErrors next;
    next.KeepIn(file);
    told = next.All();
    EXPECT_EQ(told.text, "Why.\n\nSo.");
    EXPECT_EQ(told.dictation, "B0");
    EXPECT_EQ(1 + told.others.size() + static_cast<size_t>(told.more), 60u);
    const std::string box = SendErrorBoxText(told);
    EXPECT_NE(box.find("B1, B2, "), std::string::npos) << box;
    EXPECT_LT(box.size(), 500u) << "a box that fits the screen";
    next.Forget(told);
    EXPECT_FALSE(next.All());
    EXPECT_FALSE(LFile::Exists(file));
}

TEST(UntoldErrorsTest, ARubbishFileYieldsBoundedTextsAndOneThatCannotBeReadIsNotReplaced) {
    const TempFolder temp;
    const LPath file = temp.File("untold.txt");
    std::string many = "999999999999";
    while (many.size() < 100000) many += std::string("\0z\r\x01", 4);
    for (const std::string& text : {std::string(100000, '\0'), std::string(100000, 'x'), many}) {
        WriteFileText(file, text);
        UntoldErrors errors;
        errors.KeepIn(file);
        errors.Add({"Why.", "A", ""});
        EXPECT_LT(SendErrorBoxText(errors.All()).size(), 2000u);
        errors.Forget(errors.All());
        EXPECT_FALSE(errors.All());
        EXPECT_FALSE(LFile::Exists(file));
    }
    ASSERT_TRUE(LFile::MakeFolder(file));
    UntoldErrors errors;
    errors.KeepIn(file);
    EXPECT_TRUE(errors.Add({"Why.", "A", ""}));
    EXPECT_EQ(temp.Names(temp.Path()).size(), 1u);
}
