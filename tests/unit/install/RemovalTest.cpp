#include "install/DeletionPlan.h"
#include "install/RemovalArguments.h"
#include "tests/unit/TestKit.h"

TEST(DeletionPlan, AddsALineToWininitAndKeepsAllOthers) {
    static const struct {
        const char *before, *after;
    } kCases[] = {
        {"", "[rename]\r\nNUL=C:\\A\r\n"},
        {"[x]\r\ny=1", "[x]\r\ny=1\r\n[rename]\r\nNUL=C:\\A\r\n"},
        {"[Rename]\nNUL=C:\\B\n\n; of others\n\n[x]\n",
         "[Rename]\nNUL=C:\\B\n\n; of others\nNUL=C:\\A\r\n\n[x]\n"},
        {"[rename]\r\nC:\\A=C:\\B", "[rename]\r\nC:\\A=C:\\B\r\nNUL=C:\\A\r\n"},
        {"[rename]\r\nNUL=c:\\a\r\n", "[rename]\r\nNUL=c:\\a\r\n"},
        {"[x]\r\nNUL=C:\\A\r\n[rename]\r\n[rename]\r\n",
         "[x]\r\nNUL=C:\\A\r\n[rename]\r\nNUL=C:\\A\r\n[rename]\r\n"},
    };
    for (const auto& c : kCases) EXPECT_EQ(WithDeletion(c.before, "C:\\A"), c.after);
}

TEST(DeletionPlan, CommandsNameNothingElse) {
    const LPath interpreter("C:\\W\\cmd.exe");
    const DeletedPath both[] = {{LPath("C:\\a b\\c.exe")}, {LPath("C:\\a b"), true}};
    EXPECT_EQ(DeletionCommand(interpreter, both),
              "\"C:\\W\\cmd.exe\" /c del \"C:\\a b\\c.exe\" & rd \"C:\\a b\"");
    const DeletedPath folders[] = {{LPath("C:\\A\\B"), true}, {LPath("C:\\A"), true}};
    EXPECT_EQ(DeletionCommand(LPath("C:\\W\\COMMAND.COM"), folders),
              "\"C:\\W\\COMMAND.COM\" /c for %d in (C:\\A\\B C:\\A) do rd %d");
    EXPECT_EQ(DeletionCommand(LPath("C:\\W\\COMMAND.COM"), both), "");
    for (const std::string& path : {std::string("C:\\%TEMP%"), "C:\\" + std::string(240, 'x')}) {
        const DeletedPath refused[] = {{LPath(path)}};
        EXPECT_EQ(DeletionCommand(interpreter, refused), "") << path;
    }
}

TEST(RemovalArguments, OnlyTheFullPathOfAProgramIsBelieved) {
    const LPath own("C:\\Temp\\cvr1\\corvane.exe");
    for (const char* taken : {"C:\\Program Files\\Mervald\\Corvane\\corvane.exe", "\\\\s\\p\\CORVANE.EXE"})
        EXPECT_EQ(InstalledProgramOf(own, taken).View(), taken);
    for (const char* refused :
         {"", "corvane.exe", "C:corvane.exe", "\\corvane.exe", "C:\\a\\..\\corvane.exe", "C:\\.\\corvane.exe",
          "C:\\a\\other.exe", "C:\\a\\corvane.exe\\", "C:\\a:b\\corvane.exe", "C:\\*\\corvane.exe",
          "C:\\a/corvane.exe", "\\\\?\\C:\\corvane.exe", "\\\\.\\C:\\corvane.exe", "C:\\a\"\\corvane.exe",
          "c:\\temp\\CVR1\\corvane.exe"})
        EXPECT_EQ(InstalledProgramOf(own, refused).View(), "") << refused;
    EXPECT_TRUE(InstalledProgramOf(own, "C:\\" + std::string(250, 'a') + "\\corvane.exe").Empty());
}
