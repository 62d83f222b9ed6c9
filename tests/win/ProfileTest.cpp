#include "base/LProfile.h"

#include <gtest/gtest.h>
#include <windows.h>

#include "tests/unit/TempFolder.h"
#include "tests/win/OtherProgram.h"

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
