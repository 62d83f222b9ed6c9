#include "app/window/UnsavedNotes.h"
#include "tests/unit/TestKit.h"

TEST(UnsavedNotes, KeepsWhatTheDiskDoesNotTakeUntilItDoes) {
    TempFolder temp;
    const LPath lost = temp.File("gone/00000001.txt"), fine = temp.File("00000002.txt");
    UnsavedNotes notes;
    EXPECT_FALSE(notes.Save(lost, "", "first"));
    EXPECT_TRUE(notes.Save(fine, "", "other"));
    EXPECT_FALSE(notes.Save(lost, "", "first and more"));
    ASSERT_NE(notes.Find(lost), nullptr);
    EXPECT_EQ(notes.Find(lost)->text, "first and more");
    EXPECT_EQ(notes.Find(fine), nullptr);
    EXPECT_TRUE(notes.Retry().empty());
    temp.Folder("gone");
    WriteFileText(lost, std::string("of another program\0", 19));
    EXPECT_TRUE(notes.Retry().empty()) << "no record yet, or no more";
    WriteFileText(lost.WithExtension(".dat"), "");
    EXPECT_EQ(notes.Retry().size(), 1u);
    EXPECT_EQ(ReadFileText(lost), std::string("first and more\r\nof another program\0", 35));
    EXPECT_TRUE(notes.Empty());
}
