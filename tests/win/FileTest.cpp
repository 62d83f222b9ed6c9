#include "base/LFile.h"

#include <windows.h>

#include "base/LCopyFile.h"
#include "base/LFileLock.h"
#include "base/LRegistry_win.h"
#include "store/DataFolder_win.h"
#include "store/NotesFile.h"
#include "tests/unit/TestKit.h"
#include "tests/win/OtherProgram.h"

TEST(PlatformFile, IsSharedWithReadersAndWithNoSecondWriter) {
    TempFolder folder;
    const LPath path = folder.File("a.wav");
    for (LFile::Open how : {LFile::Open::CreateNew, LFile::Open::Write}) {
        LFile writer(path, how);
        ASSERT_TRUE(writer.IsOpen());
        EXPECT_TRUE(LFile(path, LFile::Open::Read).IsOpen());
        EXPECT_FALSE(LFile(path, LFile::Open::Write).IsOpen());
        EXPECT_FALSE(LFile(path, LFile::Open::CreateNew).IsOpen());
    }
    EXPECT_FALSE(LFile(folder.File("none"), LFile::Open::Read).IsOpen());
    EXPECT_FALSE(LFile(folder.Path(), LFile::Open::Read).IsOpen());
}

TEST(PlatformFile, WhatIsOpenNeitherMovesNorIsReplaced) {
    TempFolder folder;
    const LPath open = folder.File("open"), other = folder.File("other");
    WriteFileText(open, "old");
    WriteFileText(other, "new");
    {
        LFile reader(open, LFile::Open::Read);
        EXPECT_FALSE(LFile::Move(open, folder.File("moved")));
        EXPECT_FALSE(LFile::Replace(other, open));
        EXPECT_FALSE(LFile::Delete(open));
        EXPECT_FALSE(NotesFile::Write(open, "text"));
    }
    EXPECT_EQ(ReadFileText(open), "old");
    EXPECT_EQ(ReadFileText(other), "new");
    EXPECT_TRUE(LFile::Replace(other, open));
    EXPECT_EQ(ReadFileText(open), "new");
}

// Reads along, as a virus scanner does, so that the file cannot be renamed.
struct ScannedContext final : NotingContext {
    bool CancelRequested() override { return (scanner = LFile(path, LFile::Open::Read), false); }
    LPath path;
    LFile scanner;
};

TEST(PlatformFile, ACopyThatCannotBeRenamedIsMadeDirectly) {
    TempFolder folder;
    const std::string text(100000, 'x');
    WriteFileText(folder.File("a"), text);
    ScannedContext context;
    context.path = folder.File("d.cv~");
    EXPECT_EQ(LProcessCopyFile(folder.File("a"), folder.File("d.dct")).Process(context), ProcessResult::Done);
    EXPECT_TRUE(ReadFileText(folder.File("d.dct")) == text);
    EXPECT_EQ(ReadFileText(folder.File("d.cv~")), "") << "what cannot be deleted is emptied";

    WriteFileText(folder.File("a"), "new");
    LFile reader(folder.File("d.dct"), LFile::Open::Read);
    context.path = LPath();
    EXPECT_EQ(LProcessCopyFile(folder.File("a"), folder.File("d.dct")).Process(context), ProcessResult::Done);
    EXPECT_TRUE(ReadFileText(folder.File("d.dct")) == text) << "held by a reader";
    EXPECT_EQ(ReadFileText(folder.File("d (2).dct")), "new");
}

TEST(PlatformFileLock, DISABLED_HoldsItsLockUntilItIsKilled) {
    LFileLock lock;
    if (lock.TryTake(OtherProgram::File()) != LFileLock::Result::Taken) return;
    WriteFileText(LPath::Join(LFolderOf(OtherProgram::File().View()), "held"), "");
    Sleep(30000);
}

TEST(PlatformFileLock, KeepsOtherProgramsOutUntilItsHolderIsGone) {
    TempFolder folder;
    const LPath path = folder.File("a.lck");
    OtherProgram other("HoldsItsLockUntilItIsKilled", path);
    LFileLock lock;
    for (int tried = 0; !LFile::Exists(folder.File("held")) && tried < 1000; ++tried) Sleep(20);
    EXPECT_EQ(lock.Take(path, 100), LFileLock::Result::Held);
    other.Kill();
    EXPECT_EQ(lock.Take(path, 5000), LFileLock::Result::Taken);
    EXPECT_EQ(LFileLock().TryTake(path), LFileLock::Result::Held);
    EXPECT_EQ(LFileLock().TryTake(folder.File("none\\a.lck")), LFileLock::Result::Failed);
}

TEST(PlatformFile, FreeSpaceIsThatOfTheDriveAndPlentyWhenUnknown) {
    TempFolder folder;
    ULARGE_INTEGER available{};
    ASSERT_TRUE(GetDiskFreeSpaceExA(folder.Path().c_str(), &available, nullptr, nullptr));
    EXPECT_NEAR(static_cast<double>(LFile::FreeSpaceKb(folder.Path())),
                static_cast<double>(available.QuadPart / 1024), 1e6);
    EXPECT_EQ(LFile::FreeSpaceKb(LPath("Q:\\none")), UINT64_MAX);
}

namespace {

// One text value of the machine's hive, put back when the test ends.
class MachineValue {
public:
    MachineValue(const char* key, const char* value) : m_key(key), m_value(value) {}
    ~MachineValue() { Set(m_old); }
    // Empty, as if there were none.
    void Set(std::string_view text) { LWriteRegistryText(HKEY_LOCAL_MACHINE, m_key, m_value, text); }

private:
    const char *m_key, *m_value;
    const std::string m_old = LReadRegistryText(HKEY_LOCAL_MACHINE, m_key, m_value);
};

}  // namespace

TEST(PlatformDataFolder, IsTheRegistrysOrTheDefaultBelowThePrograms) {
    TempFolder folder;
    MachineValue data("Software\\Mervald\\Corvane\\CurrentVersion\\Folders", "DataFiles");
    MachineValue programs("Software\\Microsoft\\Windows\\CurrentVersion", "ProgramFilesDir");
    data.Set("C:\\data");
    EXPECT_EQ(FindDataFolder().settingsFile.View(), "C:\\data\\settings.ini");
    data.Set("");
    programs.Set(folder.Path().c_str());
    const LPath expected = folder.File("Mervald\\Corvane\\");
    EXPECT_EQ(FindDataFolder().folder.View(), expected.View());
    EXPECT_TRUE(WriteFileText(LPath::Join(expected.View(), "settings.ini"), "x"))
        << "both levels were created";
    programs.Set("");
    EXPECT_EQ(FindDataFolder().folder.View(), "C:\\Corvane\\");
    LFile::DeleteFolder(LPath("C:\\Corvane"));
}

TEST(PlatformDataFolder, EveryoneMayWriteIntoIt) {
    TempFolder folder;
    const LPath shared = folder.File("shared");
    ASSERT_TRUE(MakeFolderForEveryone(shared));
    EXPECT_FALSE(MakeFolderForEveryone(shared)) << "it exists";
    BYTE descriptor[1000] = {};
    DWORD size = 0;
    ASSERT_TRUE(
        GetFileSecurityA(shared.c_str(), DACL_SECURITY_INFORMATION, descriptor, sizeof descriptor, &size));
    BOOL present = FALSE, defaulted = FALSE;
    PACL list = nullptr;
    ACCESS_ALLOWED_ACE* entry = nullptr;
    ASSERT_TRUE(GetSecurityDescriptorDacl(descriptor, &present, &list, &defaulted) && present);
    ASSERT_TRUE(GetAce(list, 0, reinterpret_cast<void**>(&entry)));
    EXPECT_EQ(entry->Header.AceType, ACCESS_ALLOWED_ACE_TYPE);
    EXPECT_TRUE((entry->Mask & GENERIC_ALL) || (entry->Mask & FILE_ALL_ACCESS) == FILE_ALL_ACCESS);
}
