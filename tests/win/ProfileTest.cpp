#include "base/LProfile.h"

#include <gtest/gtest.h>
#include <windows.h>

#include "tests/unit/TempFolder.h"
#include "tests/unit/TestThread.h"
#include "tests/win/OtherProgram.h"

TEST(PlatformProfile, TwoThreadsWriteOneFileWithoutLoss) {
    TempFolder folder;
    const LPath file = folder.File("bgsend.dat");
    const auto write = [&file](const char* section) {
        for (int i = 0; i < 50; ++i) EXPECT_TRUE(LProfile::Write(file, section, std::to_string(i), section));
    };
    {
        const TestThread a([&] { write("a"); }), b([&] { write("b"); });
    }
    for (const char* section : {"a", "b"}) {
        const LProfileSection read(file, section);
        for (int i = 0; i < 50; ++i) EXPECT_EQ(read.Read(std::to_string(i), ""), section) << i;
    }
}

TEST(PlatformProfile, DISABLED_WritesUntilItIsKilled) {
    for (int i = 0;; ++i) LProfile::Write(OtherProgram::File(), "beat", "beat", std::to_string(i));
}

TEST(PlatformProfile, AProgramThatIsKilledWhileWritingLosesNoKey) {
    TempFolder folder;
    const LPath file = folder.File("user.dat");
    std::string old = "[old]\r\n";
    for (int i = 0; i < 200; ++i) old += "key" + std::to_string(i) + "=" + std::string(50, 'v') + "\r\n";
    for (DWORD round = 0; round < 20; ++round) {
        WriteFileText(file, old);
        OtherProgram writer("WritesUntilItIsKilled", file);
        const DWORD start = GetTickCount();
        while (ReadFileText(file).size() <= old.size() && GetTickCount() - start < 20000) Sleep(1);
        EXPECT_LT(GetTickCount() - start, 20000u) << "it never wrote";
        Sleep(round % 7);  // at another moment each time
        writer.Kill();
        ASSERT_TRUE(ReadFileText(file).starts_with(old)) << round;
    }
}

TEST(PlatformProfile, AFlushedFileMovesWithAllThatWasWritten) {
    TempFolder folder;
    const LPath from = folder.File("a.dat");
    const LPath to = folder.File("b.dat");
    for (const char* value : {"one", "two"}) {
        EXPECT_TRUE(LProfile::Write(from, "file", "name", value));
        LProfile::Flush(from);
        ASSERT_TRUE(LFile::Move(from, to));
        EXPECT_EQ(LProfile::Read(to, "file", "name", ""), value);
        EXPECT_EQ(LProfile::Read(from, "file", "name", "gone"), "gone");
        ASSERT_TRUE(LFile::Delete(to));
    }
}

TEST(PlatformProfile, AnEmptyPathDoesNotReachTheSystemsOwnFile) {
    char folder[kPathSize] = {};
    GetWindowsDirectoryA(folder, sizeof folder);
    const LPath system = LPath::Join(folder, "win.ini");
    const std::string before = ReadFileText(system);
    EXPECT_FALSE(LProfile::Write(LPath(), "corvane test", "key", "value"));
    EXPECT_FALSE(LProfile::Delete(LPath(), "corvane test", "key"));
    LProfile::Flush(LPath());
    EXPECT_EQ(LProfileSection(LPath(), "fonts").Read("key", "none"), "none");
    EXPECT_EQ(ReadFileText(system), before);
}
