#include "install/RemovalCopy_win.h"

#include <cstdlib>

#include "base/LFile.h"
#include "base/LText.h"
#include "base/LTrace.h"
#include "install/DelayedDeletion_win.h"
#include "install/InstallTable.h"
#include "install/RemovalArguments.h"
#include "ui/LShell.h"

namespace {

constexpr char kFolderPrefix[] = "cvr";
constexpr uint32_t kMostTries = 100;
constexpr int kArgumentsOfCopy = 3;  // argument 0, "/uninstall", the installed program

LPath TemporaryFolder() {
    char folder[kPathSize];
    const DWORD length = GetTempPathA(sizeof folder, folder);
    return length > 0 && length < sizeof folder ? LPath({folder, length}) : LPath();
}

LPath FolderOf(const LPath& file) {
    return LPath(LFolderOf(file.View())).WithoutSeparator();
}

// A folder that was not there before: nothing lies in it. Empty when none can be made.
LPath MakeOwnFolder() {
    const LPath temporary = TemporaryFolder();
    for (uint32_t i = 0; !temporary.Empty() && i < kMostTries; ++i) {
        const uint32_t number = (GetTickCount() + i) & 0xFFFFF;
        const LPath folder = LPath::Join(
            temporary.View(), LFormat("%s%05lx", kFolderPrefix, static_cast<unsigned long>(number)));
        if (LFile::MakeFolder(folder)) return folder;
    }
    return {};
}

// A copy has the attributes of its original: read-only ones would keep it from being deleted.
bool CopyAndStart(const LPath& program, const LPath& copy) {
    if (!CopyFileA(program.c_str(), copy.c_str(), TRUE)) return false;
    LFile::MakeWritable(copy);
    const std::string arguments = "/uninstall \"" + std::string(program.View()) + '"';
    return LStartProgram(copy, arguments.c_str());
}

}  // namespace

// The place of a copy may have another spelling than the temporary folder; its second argument is certain.
bool RemovalCopy::Start() {
    if (__argc >= kArgumentsOfCopy) {
        LTrace("RemovalCopy::Start refused in a copy");
        return false;
    }
    const LPath program = LProgramPath();
    const LPath folder = program.Empty() ? LPath() : MakeOwnFolder();
    const LPath copy = folder.Empty() ? LPath() : LPath::Join(folder.View(), kProgramFile);
    if (!copy.Empty() && CopyAndStart(program, copy)) return true;
    LTrace("RemovalCopy::Start unable to copy or start", copy.View());
    LFile::Delete(copy);
    LFile::DeleteFolder(folder);
    return false;
}

bool RemovalCopy::IsRunning() {
    const LPath folder = FolderOf(LProgramPath());
    const LPath temporary = ShortPathOf(TemporaryFolder().WithoutSeparator());
    return LEqualNoCase(LFileNameOf(folder.View()).substr(0, sizeof kFolderPrefix - 1), kFolderPrefix) &&
           LEqualNoCase(ShortPathOf(FolderOf(folder)).View(), temporary.View());
}

LPath RemovalCopy::Installed(int argumentCount, const char* const* arguments) {
    const LPath own = LProgramPath();
    if (argumentCount < kArgumentsOfCopy) return own;
    const LPath named = IsRunning() ? InstalledProgramOf(own, arguments[2]) : LPath();
    return LFile::Exists(named) ? named : LPath();
}

bool RemovalCopy::DeleteItself() {
    const LPath own = LProgramPath();
    const DeletedPath paths[] = {{own}, {FolderOf(own), true}};
    return IsRunning() && DeleteAtNextStart(paths);
}
