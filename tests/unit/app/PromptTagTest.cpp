#include "app/dialogs/PromptTag.h"

#include <gtest/gtest.h>

TEST(PromptTag, IsAPlainWord) {
    for (const char* tag : {"fileno", "_x", "Case-No.2"}) EXPECT_TRUE(IsPlainTag(tag)) << tag;
    for (const char* tag : {"", "case no", "1st", "<x>", "a/b", "-x", "f\xFCr"})
        EXPECT_FALSE(IsPlainTag(tag)) << tag;
}
