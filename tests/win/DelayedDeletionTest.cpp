#include "install/DelayedDeletion_win.h"

#include <array>

#include "base/LLibrary_win.h"
#include "base/LRegistry_win.h"
#include "tests/unit/TestKit.h"

// What is to be deleted at the very start, on either kind of platform.
static std::pair<std::wstring, std::string> Noted() {
    std::wstring moves;
    LReadRegistryTexts(HKEY_LOCAL_MACHINE, "SYSTEM\\CurrentControlSet\\Control\\Session Manager",
                       L"PendingFileRenameOperations", moves);
    return {moves, ReadFileText(LPath::Join(LWindowsFolder().View(), "wininit.ini"))};
}

TEST(DelayedDeletion, IsTakenBackInOneFolderAlone) {
    TempFolder installed, other;
    const DeletedPath paths[] = {{installed.File("a")}, {installed.Path(), true}};
    WriteFileText(installed.File("a"), "x");
    WriteFileText(other.File("a"), "x");
    EXPECT_TRUE(DeleteAtNextStart(std::array{DeletedPath{other.File("a")}}));
    const auto before = Noted();
    EXPECT_TRUE(DeleteAtNextStart(paths));
    EXPECT_NE(Noted(), before);
    EXPECT_TRUE(WithdrawDeletions(installed.Path()));
    EXPECT_EQ(Noted(), before);
    EXPECT_TRUE(WithdrawDeletions(other.Path()));
}
