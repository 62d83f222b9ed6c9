#include "base/LFile.h"

#include <gtest/gtest.h>

#include "base/LCopyFile.h"
#include "base/LMemoryFile.h"
#include "base/LTime.h"
#include "tests/unit/TempFolder.h"

namespace {

std::span<const uint8_t> AsBytes(std::string_view text) {
    return {reinterpret_cast<const uint8_t*>(text.data()), text.size()};
}

size_t CountEntries(const TempFolder& folder) {
    size_t count = 0;
    LListFolder(folder.Path(), "*.*", [&](const LFolderEntry&) { return ++count > 0; });
    return count;
}

// Cancels after so many questions; keeps what was reported.
class Notebook final : public ProcessContext {
public:
    explicit Notebook(int cancelAfter = 1000000) : m_left(cancelAfter) {}
    bool CancelRequested() override { return m_left-- <= 0; }
    void SetProgress(double fraction) override {
        EXPECT_GE(fraction, progress);
        progress = fraction;
    }
    void SetStatus(std::string_view text) override { status = text; }
    void SetError(std::string_view) override {}

    double progress = 0;
    std::string status;

private:
    int m_left;
};

}  // namespace

TEST(File, GrowsUnderTheEyesOfAReader) {
    TempFolder folder;
    LFile writer(folder.File("a"), LFile::Open::CreateNew);
    ASSERT_TRUE(writer.WriteAll(AsBytes("12345")));
    LFile reader(folder.File("a"), LFile::Open::Read);
    ASSERT_TRUE(reader.IsOpen());
    EXPECT_EQ(reader.Size(), 5);
    ASSERT_TRUE(writer.WriteAll(AsBytes("678")));
    EXPECT_EQ(reader.Size(), 8);
    uint8_t bytes[10];
    EXPECT_EQ(reader.Read(bytes), 8u);
    EXPECT_TRUE(reader.Seek(100));
    EXPECT_EQ(reader.Read(bytes), 0u);
    EXPECT_FALSE(reader.Seek(-1));
}

TEST(File, IsCutAndExtendedAtItsPosition) {
    TempFolder folder;
    WriteFileText(folder.File("a"), "12345678");
    LFile file(folder.File("a"), LFile::Open::Write);
    EXPECT_TRUE(file.Seek(3));
    EXPECT_TRUE(file.SetEnd());
    EXPECT_EQ(file.Size(), 3);
    EXPECT_TRUE(file.Seek(5));
    EXPECT_TRUE(file.SetEnd());
    EXPECT_EQ(file.Position(), 5);
    const int64_t age = LNowSeconds() - file.WriteTime();
    EXPECT_LE(age < 0 ? -age : age, 10);
    file.Close();
    EXPECT_EQ(ReadFileText(folder.File("a")), std::string("123\0\0", 5));
}

TEST(File, NothingOpensOrMovesUnderARefusedPath) {
    TempFolder folder;
    const LPath refused(std::string(300, 'a'));
    WriteFileText(folder.File("a"), "old");
    EXPECT_FALSE(LFile(refused, LFile::Open::CreateNew).IsOpen());
    EXPECT_FALSE(LFile::Move(folder.File("a"), refused));
    EXPECT_FALSE(LFile::Replace(folder.File("a"), refused));
    EXPECT_FALSE(LFile::WriteWhole(refused, folder.File("b"), AsBytes("new")));
    EXPECT_FALSE(LFile::Exists(refused));
    EXPECT_EQ(CountEntries(folder), 1u);
    LFile closed;
    EXPECT_FALSE(closed.WriteAll(AsBytes("x")) || closed.Seek(0) || closed.SetEnd() || closed.Flush());
}

TEST(File, MoveRefusesWhatReplaceTakes) {
    TempFolder folder;
    const LPath a = folder.File("a");
    const LPath b = folder.File("b");
    WriteFileText(a, "new");
    WriteFileText(b, "old");
    EXPECT_FALSE(LFile::Move(a, b));
    EXPECT_EQ(ReadFileText(b), "old");
    EXPECT_TRUE(LFile::Replace(a, b));
    EXPECT_EQ(ReadFileText(b), "new");
    EXPECT_FALSE(LFile::Exists(a));
    EXPECT_FALSE(LFile::Replace(a, b)) << "without the finished file the target must stay";
    EXPECT_EQ(ReadFileText(b), "new");
    EXPECT_TRUE(LFile::Move(b, a));
}

TEST(File, WritingWholeLeavesNothingBesideItWhenItFails) {
    TempFolder folder;
    folder.Folder("taken");  // a folder cannot be replaced by a file
    EXPECT_FALSE(LFile::WriteWhole(folder.File("taken"), folder.File("beside"), AsBytes("x")));
    EXPECT_EQ(CountEntries(folder), 1u);
    EXPECT_TRUE(LFile::WriteWhole(folder.File("a"), folder.File("beside"), AsBytes("x")));
    EXPECT_TRUE(LFile::WriteWhole(folder.File("a"), folder.File("beside"), AsBytes("yz")));
    EXPECT_EQ(ReadFileText(folder.File("a")), "yz");
    EXPECT_EQ(CountEntries(folder), 2u);
}

TEST(File, ReadingWholeHasALimit) {
    TempFolder folder;
    WriteFileText(folder.File("a"), "12345");
    std::vector<uint8_t> bytes(1);
    EXPECT_FALSE(LFile::ReadWhole(folder.File("a"), 4, bytes));
    EXPECT_FALSE(LFile::ReadWhole(folder.File("none"), 4, bytes));
    EXPECT_EQ(bytes.size(), 1u) << "a refusal changes nothing";
    EXPECT_TRUE(LFile::ReadWhole(folder.File("a"), 5, bytes));
    EXPECT_EQ(bytes.size(), 5u);
}

TEST(File, ListsByPatternWithoutRegardToCase) {
    TempFolder folder;
    for (const char* name : {"1.dat", "2.DAT", "3.wav"}) WriteFileText(folder.File(name), name);
    folder.Folder("4.dat");
    std::string files;
    int folders = 0;
    LListFolder(folder.Path(), "*.dat", [&](const LFolderEntry& entry) {
        entry.isFolder ? ++folders : static_cast<int>(files.append(entry.name).size());
        EXPECT_TRUE(entry.isFolder || entry.size == 5);
        return true;
    });
    EXPECT_EQ(files.size(), 10u) << files;
    EXPECT_EQ(folders, 1);
}

TEST(MemoryFile, TakesWhatFitsOnAFullDisk) {
    LMemoryFile file;
    file.SetCapacity(4);
    EXPECT_EQ(file.Write(AsBytes("123456")), 4u);
    EXPECT_EQ(file.Write(AsBytes("7")), 0u);
    EXPECT_TRUE(file.Seek(2));
    EXPECT_EQ(file.Write(AsBytes("ab")), 2u);
    EXPECT_TRUE(file.Seek(9));
    EXPECT_FALSE(file.SetEnd());
    EXPECT_EQ(file.Size(), 4);
}

TEST(CopyFile, CopiesWholeAndReportsProgress) {
    TempFolder folder;
    const std::string text(200000, 'x');
    WriteFileText(folder.File("from.dct"), text);
    WriteFileText(folder.File("to.dct"), "old");
    Notebook notebook;
    EXPECT_EQ(LProcessCopyFile(folder.File("from.dct"), folder.File("to.dct")).Process(notebook),
              ProcessResult::Done);
    EXPECT_EQ(ReadFileText(folder.File("to.dct")), text);
    EXPECT_EQ(notebook.progress, 1.0);
    EXPECT_EQ(notebook.status, "Please wait...");
    EXPECT_EQ(CountEntries(folder), 2u);
}

TEST(CopyFile, LeavesTheTargetAloneWhenItCannotFinish) {
    TempFolder folder;
    WriteFileText(folder.File("from.dct"), std::string(200000, 'x'));
    WriteFileText(folder.File("to.dct"), "old");
    folder.Folder("taken.dct");
    const auto copy = [&](std::string_view from, std::string_view to, int cancelAfter) {
        Notebook notebook(cancelAfter);
        return LProcessCopyFile(folder.File(from), folder.File(to)).Process(notebook);
    };
    EXPECT_EQ(copy("from.dct", "to.dct", 2), ProcessResult::Stopped);
    EXPECT_EQ(copy("none.dct", "to.dct", 9), ProcessResult::Failed);
    EXPECT_EQ(copy("from.dct", "taken.dct", 9), ProcessResult::Failed);
    EXPECT_EQ(copy("from.dct", "no such folder/to.dct", 9), ProcessResult::Failed);
    EXPECT_EQ(ReadFileText(folder.File("to.dct")), "old");
    EXPECT_EQ(CountEntries(folder), 3u);
}
