#include "base/LFile.h"

#include "base/LCopyFile.h"
#include "tests/unit/TestKit.h"

class FileTest : public testing::Test {
protected:
    using Names = std::vector<std::string>;
    Names NamesNow() const { return TempFolder::Names(m_folder.Path()); }
    ProcessResult Copy(std::string_view from, std::string_view to, NotingContext& context) const {
        return LProcessCopyFile(m_folder.File(from), m_folder.File(to)).Process(context);
    }

    TempFolder m_folder;
    const LPath m_a = m_folder.File("a");
    const LPath m_b = m_folder.File("b");
};

TEST_F(FileTest, GrowsUnderTheEyesOfAReader) {
    LFile writer(m_a, LFile::Open::CreateNew);
    ASSERT_TRUE(writer.WriteAll(Text("12345")));
    LFile reader(m_a, LFile::Open::Read);
    EXPECT_EQ(reader.Size(), 5);
    ASSERT_TRUE(writer.WriteAll(Text("678")));
    EXPECT_EQ(reader.Size(), 8);
    uint8_t bytes[10];
    EXPECT_EQ(reader.Read(bytes), 8u);
    EXPECT_TRUE(reader.Seek(100));
    EXPECT_EQ(reader.Read(bytes), 0u);
    EXPECT_FALSE(reader.Seek(-1));
}

TEST_F(FileTest, MoveRefusesWhatReplaceTakes) {
    WriteFileText(m_a, "new");
    WriteFileText(m_b, "old");
    EXPECT_FALSE(LFile::Move(m_a, m_b));
    EXPECT_EQ(ReadFileText(m_b), "old");
    EXPECT_TRUE(LFile::Replace(m_a, m_b));
    EXPECT_FALSE(LFile::Replace(m_a, m_b)) << "without the finished file the target must stay";
    EXPECT_EQ(ReadFileText(m_b), "new");
    EXPECT_EQ(NamesNow(), Names{"b"});
    EXPECT_FALSE(LFile(m_b, LFile::Open::CreateAbsent).IsOpen());
    EXPECT_TRUE(LFile(m_a, LFile::Open::CreateAbsent).IsOpen());
    LFile closed;
    EXPECT_FALSE(closed.WriteAll(Text("x")) || closed.Seek(0) || closed.SetEnd() || closed.Flush());
}

TEST_F(FileTest, WritingWholeLeavesNothingBesideItAndReadingWholeHasALimit) {
    m_folder.Folder("b");  // a folder cannot be replaced by a file
    EXPECT_FALSE(LFile::WriteWhole(m_b, m_folder.File("beside"), Text("x")));
    EXPECT_EQ(NamesNow(), Names{"b"});
    for (const char* text : {"x", "12345"})
        EXPECT_TRUE(LFile::WriteWhole(m_a, m_folder.File("beside"), Text(text)));
    EXPECT_EQ(NamesNow(), (Names{"a", "b"}));
    Bytes bytes(1);
    EXPECT_FALSE(LFile::ReadWhole(m_a, 4, bytes));
    EXPECT_FALSE(LFile::ReadWhole(m_folder.File("none"), 4, bytes));
    EXPECT_EQ(bytes.size(), 1u) << "a refusal changes nothing";
    EXPECT_TRUE(LFile::ReadWhole(m_a, 5, bytes));
    EXPECT_EQ(bytes, Text("12345"));
}

TEST_F(FileTest, IsCopiedWholeOrTheTargetStaysAsItWas) {
    const std::string text(200000, 'x');
    WriteFileText(m_a, text);
    WriteFileText(m_b, "old");
    NotingContext stopped, other;
    stopped.cancelAfter = 2;
    EXPECT_EQ(Copy("a", "b", stopped), ProcessResult::Stopped);
    for (const auto& [from, to] : {std::pair("none", "b"), std::pair("a", "none/b")})
        EXPECT_EQ(Copy(from, to, other), ProcessResult::Failed) << from << to;
    EXPECT_EQ(ReadFileText(m_b), "old");
    EXPECT_EQ(NamesNow(), (Names{"a", "b"}));

    NotingContext done;
    EXPECT_EQ(Copy("a", "c.dct", done), ProcessResult::Done);
    EXPECT_TRUE(ReadFileText(m_folder.File("c.dct")) == text);
    EXPECT_TRUE(std::ranges::is_sorted(done.progress) && done.progress.back() == 1.0);
    EXPECT_EQ(NamesNow(), (Names{"a", "b", "c.dct"}));
}

// Another program gives the unfinished copy's name to a file of its own once the copy is complete.
struct OvertakenContext final : NotingContext {
    bool CancelRequested() override {
        if (!path.Empty() && !progress.empty() && progress.back() == 1.0) WriteFileText(path, "theirs");
        return false;
    }
    LPath path;
};

// Two installations may use one folder, and number their dictations alike.
TEST_F(FileTest, ACopyNeverTakesTheNameFromAnotherFile) {
    const std::string text = std::string(70000, 'x') + "end";
    const struct {
        const char* name;
        std::string before, beside;
        bool isOvertaken;
        std::string named, third, besideAfter;
    } cases[] = {
        {"other", "old", "", false, text, "old", ""},
        {"longer", text + "x", "", false, text, text + "x", ""},
        {"same", text, "", false, text, "", ""},
        {"cut off", text.substr(0, 66000), "", false, text, "", ""},
        {"left over", "", text.substr(0, 66000), false, text, "", ""},
        {"complete left over", "", text, false, text, "", ""},
        {"another's", "", "theirs", false, text, "", "theirs"},
        {"overtaken", "", "", true, text, "", "theirs"},
        {"overtaken, other", "old", "", true, "old", text, "theirs"},
    };
    for (const auto& c : cases) {
        TempFolder folder;
        const auto file = [&](const char* name) { return folder.File(name); };
        WriteFileText(file("new"), text);
        if (!c.before.empty()) WriteFileText(file("d.dct"), c.before);
        if (!c.beside.empty()) WriteFileText(file("d.cv~"), c.beside);
        WriteFileText(file("d (2).dct"), "second");
        OvertakenContext context;
        if (c.isOvertaken) context.path = file("d.cv~");
        EXPECT_EQ(LProcessCopyFile(file("new"), file("d.dct")).Process(context), ProcessResult::Done)
            << c.name;
        EXPECT_TRUE(ReadFileText(file("d.dct")) == c.named) << c.name;
        EXPECT_EQ(ReadFileText(file("d (2).dct")), "second") << c.name;
        EXPECT_TRUE(ReadFileText(file("d (3).dct")) == c.third) << c.name;
        EXPECT_EQ(ReadFileText(file("d.cv~")), c.besideAfter) << c.name;
        EXPECT_FALSE(LFile::Exists(file("d (2).cv~"))) << c.name;
    }
}
