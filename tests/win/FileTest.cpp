#include "base/LFile.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <cstdlib>

#include "base/LCopyFile.h"
#include "base/LFileLock.h"
#include "base/LProfile.h"
#include "store/DataFolder_win.h"
#include "store/MoveToSent.h"
#include "store/NotesFile.h"
#include "tests/unit/TestKit.h"

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
struct ScannedContext final : ProcessContext {
    bool CancelRequested() override { return (scanner = LFile(path, LFile::Open::Read), false); }
    void SetProgress(double) override {}
    void SetStatus(std::string_view) override {}
    void SetError(std::string_view) override {}
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

// The other program of the test below.
TEST(PlatformFileLock, DISABLED_HoldUntilKilled) {
    LFileLock lock;
    if (lock.TryTake(LPath(std::getenv("CORVANE_TEST_LOCK"))) == LFileLock::Result::Taken) Sleep(30000);
}

TEST(PlatformFileLock, KeepsOtherProgramsOutUntilItsHolderIsGone) {
    TempFolder folder;
    const LPath path = folder.File("a.lck");
    char program[MAX_PATH];
    GetModuleFileNameA(nullptr, program, sizeof program);
    std::string command = '"' + std::string(program) +
                          "\" --gtest_also_run_disabled_tests --gtest_filter=PlatformFileLock.DISABLED_*";
    SetEnvironmentVariableA("CORVANE_TEST_LOCK", path.c_str());
    STARTUPINFOA start = {};
    start.cb = sizeof start;
    PROCESS_INFORMATION other = {};
    ASSERT_TRUE(CreateProcessA(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start,
                               &other));
    for (int tried = 0; !LFile::Exists(path) && tried < 1000; ++tried) Sleep(20);
    Sleep(50);
    LFileLock lock;
    EXPECT_EQ(lock.Take(path, 100), LFileLock::Result::Held);
    TerminateProcess(other.hProcess, 1);
    EXPECT_EQ(lock.Take(path, 5000), LFileLock::Result::Taken);
    CloseHandle(other.hProcess);
    CloseHandle(other.hThread);
    EXPECT_EQ(LFileLock().TryTake(path), LFileLock::Result::Held);
    EXPECT_EQ(LFileLock().TryTake(folder.File("none\\a.lck")), LFileLock::Result::Failed);
}

TEST(PlatformFile, ADictationInUseStaysInCurrentAsItWas) {
    TempFolder folder;
    const DataFolder data = DataFolder::FromText(folder.Path().View());
    const CurrentUser user = SelectUser(data, 0);
    const auto notQueued = [](const LPath&) { return QueueAnswer::No; };
    const DictationFiles current = DictationFiles::OfNumber(user.currentFolder, 3);
    LProfile::Write(current.record, "file", "name", "Mrs Smith");
    WriteFileText(current.audio, "audio");
    WriteFileText(current.notes, "notes");
    for (const LPath* held : {&current.audio, &current.record, &current.notes}) {
        LFile reader(*held, LFile::Open::Read);
        EXPECT_FALSE(MoveToSent(user, current.record, notQueued).Run("Jo", 1));
        EXPECT_EQ(LProfile::Read(current.record, "file", "name", ""), "Mrs Smith");
        EXPECT_EQ(LProfile::Read(current.record, "file", "sendstatus", "none"), "none");
        EXPECT_TRUE(LFile::Exists(current.audio) && LFile::Exists(current.notes));
        EXPECT_FALSE(DictationFiles::OfNumber(user.sentFolder, 3).AnyExists());
    }
    MoveToSent move(user, current.record, notQueued);
    EXPECT_TRUE(move.Run("Jo", 1));
    move.Commit();
    EXPECT_EQ(LProfile::Read(move.Sent().record, "file", "sendstatus", ""), "Sending");
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
    MachineValue(const char* keyName, const char* value) : m_value(value) {
        RegCreateKeyExA(HKEY_LOCAL_MACHINE, keyName, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &m_key, nullptr);
        DWORD size = sizeof m_old - 1;
        m_had = RegQueryValueExA(m_key, value, nullptr, nullptr, reinterpret_cast<BYTE*>(m_old), &size) == 0;
    }
    ~MachineValue() {
        m_had ? Set(m_old) : Remove();
        RegCloseKey(m_key);
    }
    MachineValue(const MachineValue&) = delete;
    MachineValue& operator=(const MachineValue&) = delete;
    void Set(const std::string& text) {
        RegSetValueExA(m_key, m_value, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                       static_cast<DWORD>(text.size() + 1));
    }
    void Remove() { RegDeleteValueA(m_key, m_value); }

private:
    const char* m_value;
    HKEY m_key = nullptr;
    char m_old[1000] = {};
    bool m_had = false;
};

}  // namespace

TEST(PlatformDataFolder, IsTheRegistrysOrTheDefaultBelowThePrograms) {
    TempFolder folder;
    MachineValue data("Software\\Mervald\\Corvane\\CurrentVersion\\Folders", "DataFiles");
    MachineValue programs("Software\\Microsoft\\Windows\\CurrentVersion", "ProgramFilesDir");
    data.Set("C:\\data");
    EXPECT_EQ(FindDataFolder().settingsFile.View(), "C:\\data\\settings.ini");
    data.Remove();
    programs.Set(folder.Path().c_str());
    const LPath expected = folder.File("Mervald\\Corvane\\");
    EXPECT_EQ(FindDataFolder().folder.View(), expected.View());
    EXPECT_TRUE(WriteFileText(LPath::Join(expected.View(), "settings.ini"), "x"))
        << "both levels were created";
    programs.Remove();
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
