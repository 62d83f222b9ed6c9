#include "base/LProfile.h"

#include <gtest/gtest.h>
#include <windows.h>

#include "base/LThread.h"
#include "tests/unit/TempFolder.h"

namespace {

class Writer final : public LThread {
public:
    Writer(const LPath& file, std::string section) : m_file(file), m_section(std::move(section)) {}
    ~Writer() override { Stop(); }
    void ThreadFunction() override {
        for (int i = 0; i < 50; ++i)
            failures += !LProfile::Write(m_file, m_section, std::to_string(i), m_section);
    }
    int failures = 0;

private:
    LPath m_file;
    std::string m_section;
};

}  // namespace

TEST(PlatformProfile, TwoThreadsWriteOneFileWithoutLoss) {
    TempFolder folder;
    const LPath file = folder.File("bgsend.dat");
    Writer a(file, "a");
    Writer b(file, "b");
    ASSERT_TRUE(a.Start(kThreadNormal));
    ASSERT_TRUE(b.Start(kThreadNormal));
    ASSERT_TRUE(a.WaitForEnd(60000));
    ASSERT_TRUE(b.WaitForEnd(60000));
    EXPECT_EQ(a.failures + b.failures, 0);
    for (const char* section : {"a", "b"}) {
        const LProfileSection read(file, section);
        for (int i = 0; i < 50; ++i) EXPECT_EQ(read.Read(std::to_string(i), ""), section) << i;
    }
}

namespace {

constexpr char kChildFile[] = "CORVANE_TEST_PROFILE";

// This program again, busy with writing.
PROCESS_INFORMATION StartWriter(const LPath& file) {
    SetEnvironmentVariableA(kChildFile, file.c_str());
    char self[kPathSize] = {};
    GetModuleFileNameA(nullptr, self, sizeof self);
    std::string command = "\"" + std::string(self) +
                          "\" --gtest_also_run_disabled_tests --gtest_filter=*DISABLED_WritesUntilItIsEnded";
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};
    CreateProcessA(nullptr, command.data(), nullptr, nullptr, FALSE, DETACHED_PROCESS, nullptr, nullptr,
                   &startup, &process);
    return process;
}

}  // namespace

TEST(PlatformProfile, DISABLED_WritesUntilItIsEnded) {
    char file[kPathSize] = {};
    ASSERT_GT(GetEnvironmentVariableA(kChildFile, file, sizeof file), 0u);
    for (int i = 0;; ++i) LProfile::Write(LPath(file), "beat", "beat", std::to_string(i));
}

TEST(PlatformProfile, AProgramThatIsKilledWhileWritingLosesNoKey) {
    TempFolder folder;
    const LPath file = folder.File("user.dat");
    std::string old = "[old]\r\n";
    for (int i = 0; i < 200; ++i) old += "key" + std::to_string(i) + "=" + std::string(50, 'v') + "\r\n";
    for (DWORD round = 0; round < 20; ++round) {
        WriteFileText(file, old);
        const PROCESS_INFORMATION writer = StartWriter(file);
        const DWORD start = GetTickCount();
        while (ReadFileText(file).size() <= old.size() && GetTickCount() - start < 20000) Sleep(1);
        EXPECT_LT(GetTickCount() - start, 20000u) << "it never wrote";
        Sleep(round % 7);  // at another moment each time
        TerminateProcess(writer.hProcess, 1);
        WaitForSingleObject(writer.hProcess, 20000);
        CloseHandle(writer.hThread);
        CloseHandle(writer.hProcess);
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
