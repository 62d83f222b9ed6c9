#include "install/InstallFiles.h"

#include "tests/unit/install/PackageKit.h"

namespace {

const std::vector<GivenFile> kNew = {
    {"corvane.exe", "the newer program"},
    {"corvane.htm", "new manual"},
    {"readme.txt", "new"},
    {"corvane.lst", "corvane.exe\r\ncorvane.htm\r\nreadme.txt\r\ncorvane.lst\r\n"}};

// A folder with an older program, its manual, and a file of somebody else's.
class InstallFilesTest : public testing::Test {
protected:
    InstallFilesTest() {
        for (const auto& [name, text] : m_before) Put(name, text);
    }
    void Put(std::string_view name, std::string_view text) {
        LFile(m_folder.File(name), LFile::Open::CreateNew).WriteAll(Text(text));
    }
    // Names and contents of the folder's files.
    std::map<std::string, std::string> Found() const {
        std::map<std::string, std::string> found;
        for (const std::string& name : TempFolder::Names(m_folder.Path())) {
            Bytes bytes;
            if (LFile::ReadWhole(m_folder.File(name), 1000, bytes))
                found[name] = std::string(bytes.begin(), bytes.end());
        }
        return found;
    }

    TempFolder m_folder;
    const std::map<std::string, std::string> m_before = {
        {"corvane.exe", "older"},
        {"corvane.htm", "manual"},
        {"corvane.lst", "former.png\ncorvane.htm\r\n\n..\\mine.doc\r\nC:mine.doc"},
        {"former.png", "picture"},
        {"mine.doc", "mine"}};
    LMemoryFile m_stream{PackageParts(kNew).Join()};
    SetupPackage m_package = *SetupPackage::Open(m_stream);
    NotingContext m_context;
};

}  // namespace

TEST_F(InstallFilesTest, PutsAllFilesInTheirPlacesOrBack) {
    InstallFiles files(m_package, m_folder.Path());
    EXPECT_EQ(files.WriteBeside(m_context), ProcessResult::Done);
    EXPECT_EQ(files.SwapIn(), InstallFiles::Outcome::Done);
    files.PutBack();
    EXPECT_EQ(Found(), m_before);
    EXPECT_EQ(files.WriteBeside(m_context), ProcessResult::Done);
    EXPECT_EQ(files.SwapIn(), InstallFiles::Outcome::Done);
    files.Finish();
    const std::map<std::string, std::string> after = {{"corvane.exe", "the newer program"},
                                                      {"corvane.htm", "new manual"},
                                                      {"corvane.lst", kNew[3].bytes},
                                                      {"mine.doc", "mine"},
                                                      {"readme.txt", "new"}};
    EXPECT_EQ(Found(), after);
    EXPECT_EQ(LFile(m_folder.File("readme.txt"), LFile::Open::Read).WriteTime(), 1172657045);
    EXPECT_TRUE(RemoveInstalledFiles(m_folder.Path()).empty());
    EXPECT_EQ(Found(), (std::map<std::string, std::string>{{"mine.doc", "mine"}}));
}

TEST_F(InstallFilesTest, ChangesNothingWhenItCannotDoAll) {
    // Somebody else's under the name of the last but the program, and a left-over that cannot be deleted.
    for (const char* obstacle : {"readme.txt", "corvane.exe.old~"}) {
        LFile::MakeFolder(m_folder.File(obstacle));
        {
            InstallFiles files(m_package, m_folder.Path());
            EXPECT_EQ(files.WriteBeside(m_context), ProcessResult::Done);
            EXPECT_EQ(files.SwapIn(), InstallFiles::Outcome::Failed);
        }
        EXPECT_EQ(Found(), m_before) << obstacle;
        LFile::DeleteFolder(m_folder.File(obstacle));
    }
    m_context.cancelAfter = 1;
    EXPECT_EQ(InstallFiles(m_package, m_folder.Path()).WriteBeside(m_context), ProcessResult::Stopped);
    EXPECT_EQ(Found(), m_before);
}

TEST_F(InstallFilesTest, TheNextRunPutsBackWhatACutOffRunSetAside) {
    // Cut off with the manual in its place and the program still aside.
    LFile::Move(m_folder.File("corvane.exe"), m_folder.File("corvane.exe.old~"));
    Put("corvane.exe.new~", "the newer pro");
    Put("corvane.htm.old~", "manual");
    InstallFiles(m_package, m_folder.Path()).Recover();
    EXPECT_EQ(Found(), m_before);
}
