#include "install/DeletionPlan.h"

#include <array>
#include <cstring>

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

TEST(DeletionPlan, AnInstallationTakesBackWhatIsInItsFolder) {
    const LPath spellings[] = {LPath("C:\\a b\\c"), LPath("C:\\AB~1\\C")};
    EXPECT_EQ(WithoutDeletions("[x]\nNUL=C:\\AB~1\\C\\d\n[rename]\r\nnul=c:\\ab~1\\C\\D\r\n"
                               "NUL=C:\\AB~1\\CD\nA=C:\\AB~1\\C\\D\nNUL=C:\\a b\\C",
                               spellings),
              "[x]\nNUL=C:\\AB~1\\C\\d\n[rename]\r\nNUL=C:\\AB~1\\CD\nA=C:\\AB~1\\C\\D\n");
    for (const char* ours :
         {"x /c del \"C:\\a b\\c\\d\" & rd \"C:\\a b\\c\"", "x /c for %d in ( C:\\AB~1\\C) do"})
        EXPECT_TRUE(DeletesIn(ours, spellings)) << ours;
    for (const char* other : {"", "C:\\a b\\c\\x /c", "x /c del \"C:\\a b\\c d\""})
        EXPECT_FALSE(DeletesIn(other, spellings)) << other;

    const auto text = [](const char* zeroes) {  // which are "|" here
        std::wstring wide(zeroes, zeroes + std::strlen(zeroes));
        std::ranges::replace(wide, L'|', L'\0');
        return wide;
    };
    const auto isOurs = [](std::wstring_view path) { return path == L"C:\\c" || path == L"\\\\s\\c"; };
    static const char* const kCases[][2] = {
        {"\\??\\C:\\c|||", "|"},
        {"\\??\\C:\\d||\\??\\C:\\c||\\??\\C:\\c|!\\??\\C:\\d|\\??\\UNC\\s\\c|||",
         "\\??\\C:\\d||\\??\\C:\\c|!\\??\\C:\\d||"},
        {"C:\\c||\\??\\C:\\c|", "C:\\c||\\??\\C:\\c|"},
        {"|\\??\\C:\\c||", "|\\??\\C:\\c||"},
    };
    for (const auto& [before, after] : kCases)
        EXPECT_EQ(WithoutDeletions(text(before), isOurs), text(after)) << before;
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
    EXPECT_NE(InstalledProgramOf(own, "C:\\\x83|\\corvane.exe").Empty(), LIsLeadByte('\x83'));
    for (const char* refused :
         {"corvane.exe", "C:corvane.exe", "C:\\a\\..\\corvane.exe", "C:\\.\\corvane.exe", "C:\\a\\other.exe",
          "C:\\a\\corvane.exe\\", "C:\\a:b\\corvane.exe", "C:\\*\\corvane.exe", "C:\\a/corvane.exe",
          "\\\\?\\C:\\corvane.exe", "\\\\.\\C:\\corvane.exe", "C:\\a\"\\corvane.exe",
          "c:\\temp\\CVR1\\corvane.exe"})
        EXPECT_EQ(InstalledProgramOf(own, refused).View(), "") << refused;
}
