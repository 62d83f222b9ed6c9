#include "install/DeletionPlan.h"

#include <array>

#include "install/RemovalArguments.h"
#include "tests/unit/TestKit.h"

TEST(DeletionPlan, AddsALineToWininitAndKeepsAllOthers) {
    static const struct {
        const char *before, *after;
    } kCases[] = {
        {"", "[rename]\r\nNUL=C:\\A\r\n"},
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
    const LPath oldInterpreter("C:\\W\\COMMAND.COM");
    const DeletedPath folders[] = {{LPath("C:\\A\\B"), true}, {LPath("C:\\A"), true}};
    EXPECT_EQ(DeletionCommand(oldInterpreter, folders),
              "\"C:\\W\\COMMAND.COM\" /c for %d in ( C:\\A\\B C:\\A) do rd %d");
    EXPECT_EQ(DeletionCommand(interpreter, std::array{DeletedPath{LPath("C:\\%TEMP%")}}), "");
}

TEST(RemovalArguments, OnlyTheFullPathOfAProgramIsBelieved) {
    const LPath own("C:\\Temp\\cvr1\\corvane.exe");
    EXPECT_FALSE(InstalledProgramOf(own, "C:\\Program Files\\CORVANE.EXE").Empty());
    for (const char* refused :
         {"corvane.exe", "C:corvane.exe", "C:\\a\\..\\corvane.exe", "C:\\.\\corvane.exe", "C:\\a\\other.exe",
          "C:\\a\\corvane.exe\\", "C:\\a:b\\corvane.exe", "C:\\*\\corvane.exe", "C:\\a/corvane.exe",
          "\\\\?\\C:\\corvane.exe", "\\\\.\\C:\\corvane.exe", "C:\\a\"\\corvane.exe",
          "c:\\temp\\CVR1\\corvane.exe"})
        EXPECT_EQ(InstalledProgramOf(own, refused).View(), "") << refused;
}
