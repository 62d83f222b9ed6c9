#include "app/window/PromptedField.h"

#include <gtest/gtest.h>

#include "app/dialogs/PromptTag.h"

TEST(PromptedField, ReplacesItsElementAndNothingElse) {
    static const char* const kCases[][4] = {
        {"no notes", "", "12", "<no>12</no>\r\n"},
        {"an empty answer", "", "", "<no></no>\r\n"},
        {"text stays, the element comes last", "Dear\r\n", "12", "Dear\r\n<no>12</no>\r\n"},
        {"an earlier one goes with its line end", "a<no>1</no> \r\n b", "2", "ab<no>2</no>\r\n"},
        {"all earlier ones", "<no>1</no>\r\n<x>y</x>\r\n<no>3</no>", "2", "<x>y</x>\r\n<no>2</no>\r\n"},
        {"another tag", "<nobody>1</nobody>", "2", "<nobody>1</nobody><no>2</no>\r\n"},
        {"an opening tag alone is text", "</no> a <no> b", "2", "</no> a <no> b<no>2</no>\r\n"},
        {"marks in the answer", "", "1</no><n<no>o>2", "<no>12</no>\r\n"},
    };
    for (const auto& [what, notes, answer, expected] : kCases)
        EXPECT_EQ(WithField(notes, "no", answer), expected) << what;
    EXPECT_EQ(WithField("a\r\n", "", "12"), "a\r\n12\r\n") << "no tag";
    for (const char* tag : {"fileno", "_x", "Case-No.2"}) EXPECT_TRUE(IsPlainTag(tag)) << tag;
    for (const char* tag : {"", "case no", "1st", "<x>", "a/b", "-x", "f\xFCr"})
        EXPECT_FALSE(IsPlainTag(tag)) << tag;
}
