#include "install/ShellLink_win.h"

#include "base/LText.h"
#include "install/ShellFolders_win.h"
#include "tests/unit/TestKit.h"

TEST(PlatformShellLink, LeadsWhereItWasMadeToLead) {
    TempFolder folder;
    const LPath shortcut = LPath::Join(ShellFolders::Read().desktop.View(), "Corvane test.lnk");
    const ShellLink link{folder.File("a b.exe"), folder.Path(), "Dictation", folder.File("a b.exe")};
    ASSERT_TRUE(link.Write(shortcut));
    EXPECT_EQ(LUpper(ShellLink::TargetOf(shortcut).View()), LUpper(link.target.View()));
    WriteFileText(shortcut, "no shortcut");
    EXPECT_TRUE(ShellLink::TargetOf(shortcut).Empty());
    LFile::Delete(shortcut);
}
