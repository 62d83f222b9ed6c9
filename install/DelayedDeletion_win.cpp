#include "install/DelayedDeletion_win.h"

#include <functional>
#include <vector>

#include "base/LFile.h"
#include "base/LLibrary_win.h"
#include "base/LProfileText.h"
#include "base/LRegistry_win.h"
#include "base/LSystemFunction_win.h"
#include "base/LText.h"
#include "base/LTrace.h"

// Three ways, since none does all: wininit.ini belongs to Windows 95 and 98, deletes before long names are
// known, and no folders; MoveFileExA belongs to the others and needs the right to write the machine's part of
// the registry; a command under RunOnce works everywhere and for everybody, but only at a log-on.

namespace {

constexpr char kRunOnce[] = "Software\\Microsoft\\Windows\\CurrentVersion\\RunOnce";
constexpr int kMostCommands = 100;
constexpr char kSessionManager[] = "SYSTEM\\CurrentControlSet\\Control\\Session Manager";
constexpr wchar_t kMoves[] = L"PendingFileRenameOperations";

bool IsWindows95() {
    return (GetVersion() & 0x80000000) != 0;
}

// False when it cannot be read or written; what is the same afterwards is not.
bool ChangeWininit(const std::function<std::string(std::string_view before)>& changed) {
    const LPath wininit = LPath::Join(LWindowsFolder().View(), "wininit.ini");
    const LPath beside = wininit.WithExtension(".in~");
    std::vector<uint8_t> bytes;
    if (LFile::TryRead(wininit, kLongestProfile, bytes) == LReadResult::Unreadable) return false;
    const std::string_view before(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    const std::string text = changed(before);
    return text == before ||
           LFile::WriteWhole(wininit, beside, {reinterpret_cast<const uint8_t*>(text.data()), text.size()}) ||
           LFile::SettleBeside(beside, wininit);
}

bool AddToWininit(const LPath& file) {
    return ChangeWininit(
        [path = ShortPathOf(file)](std::string_view before) { return WithDeletion(before, path.View()); });
}

bool MoveToNothing(const LPath& path) {
    using MoveFileEx = BOOL(WINAPI*)(LPCSTR, LPCSTR, DWORD);
    const auto moveFileEx = LSystemFunction<MoveFileEx>("MoveFileExA");
    return moveFileEx && moveFileEx(path.c_str(), nullptr, MOVEFILE_DELAY_UNTIL_REBOOT);
}

// Takes out of the registry what MoveToNothing has put there.
bool WithdrawMoves(std::span<const LPath> spellings) {
    std::wstring moves;
    const LReadResult read = LReadRegistryTexts(HKEY_LOCAL_MACHINE, kSessionManager, kMoves, moves);
    if (read != LReadResult::Values) return read == LReadResult::Absent;
    const auto isOurs = [&](std::wstring_view wide) {
        char path[kPathSize];
        const int length = WideCharToMultiByte(CP_ACP, 0, wide.data(), static_cast<int>(wide.size()), path,
                                               sizeof path, nullptr, nullptr);
        return length > 0 && LiesIn({path, static_cast<size_t>(length)}, spellings);
    };
    const std::wstring left = WithoutDeletions(moves, isOurs);
    return left == moves || LWriteRegistryTexts(HKEY_LOCAL_MACHINE, kSessionManager, kMoves, left);
}

// In Windows 95 and 98 everybody may write the machine's part, and whoever logs on next starts its commands.
HKEY HiveOfCommands() {
    return IsWindows95() ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER;
}

std::string NameOfCommand(int number) {
    return LFormat("Corvane %d", number);
}

bool AddCommand(const std::string& command) {
    const HKEY hive = HiveOfCommands();
    for (int i = 1; !command.empty() && i <= kMostCommands; ++i) {
        const std::string name = NameOfCommand(i);
        const std::string found = LReadRegistryText(hive, kRunOnce, name.c_str());
        if (found == command) return true;
        if (found.empty()) return LWriteRegistryText(hive, kRunOnce, name.c_str(), command);
    }
    return false;
}

bool WithdrawCommands(std::span<const LPath> spellings) {
    const HKEY hive = HiveOfCommands();
    bool isWhole = true;
    for (int i = 1; i <= kMostCommands; ++i) {
        const std::string name = NameOfCommand(i);
        if (DeletesIn(LReadRegistryText(hive, kRunOnce, name.c_str()), spellings))
            isWhole = LDeleteRegistryValue(hive, kRunOnce, name.c_str()) && isWhole;
    }
    return isWhole;
}

LPath Interpreter() {
    const LPath newer = LPlatformProgram("cmd.exe");
    return newer.Empty() ? LPlatformProgram("command.com") : newer;
}

}  // namespace

LPath ShortPathOf(const LPath& path) {
    char text[kPathSize];
    const DWORD length = GetShortPathNameA(path.c_str(), text, sizeof text);
    return length > 0 && length < sizeof text ? LPath({text, length}) : path;
}

bool DeleteAtNextStart(std::span<const DeletedPath> paths) {
    std::vector<DeletedPath> left;
    for (const DeletedPath& path : paths) {
        if (LFile::IsAbsent(path.path)) continue;
        if (!path.isFolder) LFile::MakeWritable(path.path);
        const bool isDone =
            IsWindows95() ? !path.isFolder && AddToWininit(path.path) : MoveToNothing(path.path);
        if (!isDone) left.push_back({ShortPathOf(path.path), path.isFolder});
    }
    if (left.empty() || AddCommand(DeletionCommand(Interpreter(), left))) return true;
    LTrace("DeleteAtNextStart unable to delete", left.front().path.View());
    return false;
}

bool WithdrawDeletions(const LPath& folder) {
    const LPath plain = folder.WithoutSeparator();
    const LPath spellings[] = {plain, ShortPathOf(plain)};
    const bool isStartClear =
        IsWindows95()
            ? ChangeWininit([&](std::string_view before) { return WithoutDeletions(before, spellings); })
            : WithdrawMoves(spellings);
    if (WithdrawCommands(spellings) && isStartClear) return true;
    LTrace("WithdrawDeletions unable to keep", folder.View());
    return false;
}
