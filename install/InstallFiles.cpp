#include "install/InstallFiles.h"

#include <algorithm>

#include "base/LText.h"
#include "base/LTrace.h"
#include "install/InstallTable.h"

// The program comes last into its place: while it runs nothing is touched, and whatever cuts the run off,
// there is a program in the folder but for a moment. A running program is told by opening its file to write,
// which every Windows refuses then; that it could be moved away under its user's hands proves nothing.

static constexpr char kList[] = "corvane.lst";
static constexpr char kBeside[] = ".new~";
static constexpr char kAside[] = ".old~";
static constexpr size_t kLongestList = 16384;  // bytes
static constexpr uint32_t kRoomKb = 1024;      // beyond the files: folders, registry, the user's settings

static LPath Named(const LPath& folder, std::string_view name, const char* ending) {
    LPath path = LPath::Join(folder.View(), name);
    return path.Append(ending) ? path : LPath();
}

static std::vector<std::string> ReadList(const LPath& folder) {
    std::vector<uint8_t> bytes;
    if (LFile::TryRead(LPath::Join(folder.View(), kList), kLongestList, bytes) != LReadResult::Values)
        return {"corvane.htm", "readme.txt", "file-formats.txt"};
    std::vector<std::string> names;
    const auto isEnd = [](uint8_t c) { return c == '\r' || c == '\n'; };
    for (auto at = bytes.begin(); at != bytes.end();) {
        const auto end = std::find_if(at, bytes.end(), isEnd);
        std::string name(at, end);
        if (IsInstallableName(name)) names.push_back(std::move(name));
        at = std::find_if_not(end, bytes.end(), isEnd);
    }
    return names;
}

std::vector<std::string> InstalledNames(const LPath& folder) {
    std::vector<std::string> names = ReadList(folder);
    std::erase_if(names, [](const std::string& name) {
        return LEqualNoCase(name, kProgramFile) || LEqualNoCase(name, kList);
    });
    names.insert(names.end(), {kList, kProgramFile});
    return names;
}

std::vector<std::string> RemoveInstalledFiles(const LPath& folder) {
    std::vector<std::string> staying;
    for (const std::string& name : InstalledNames(folder)) {
        for (const char* ending : {kBeside, kAside, ""}) {
            const LPath path = Named(folder, name, ending);
            LFile::MakeWritable(path);
            if (!LFile::IsAbsent(path) && !LFile::Delete(path, kMoveWaitMs)) staying.push_back(name + ending);
        }
    }
    return staying;
}

bool IsProgramHeld(const LPath& program) {
    LFile::MakeWritable(program);
    return LFile::Exists(program) && LFile::IsHeld(program);
}

bool HoldsProgram(const LPath& folder) {
    return LFile::Exists(LPath::Join(folder.View(), kProgramFile)) ||
           LFile::Exists(Named(folder, kProgramFile, kAside)) ||
           LFile::Exists(LPath::Join(folder.View(), kList));
}

LPath InstallFiles::Beside(const PackageFile& file) const {
    return Named(m_folder, file.name, kBeside);
}

LPath InstallFiles::Aside(const PackageFile& file) const {
    return Named(m_folder, file.name, kAside);
}

InstallFiles::~InstallFiles() {
    for (const PackageFile& file : m_package.Files()) LFile::Delete(Beside(file));
}

void InstallFiles::Recover() const {
    for (const PackageFile& file : m_package.Files()) {
        LFile::Delete(Beside(file));
        if (LFile::IsAbsent(Place(file))) LFile::Move(Aside(file), Place(file), kMoveWaitMs);
        if (LFile::Exists(Place(file))) LFile::Delete(Aside(file));
    }
}

uint32_t InstallFiles::NeededKb(const SetupPackage& package) {
    return package.TotalBytes() / 1024 + kRoomKb;
}

bool InstallFiles::WriteBeside(const PackageFile& file) const {
    LFile beside(Beside(file), LFile::Open::CreateNew);
    const bool isWritten = beside.IsOpen() && m_package.Extract(file, beside) && beside.Flush();
    if (!isWritten || !beside.SetWriteTime(file.time)) LTrace("InstallFiles::WriteBeside failed", file.name);
    return isWritten;
}

ProcessResult InstallFiles::WriteBeside(ProcessContext& context) {
    double done = 0;
    for (const PackageFile& file : m_package.Files()) {
        if (context.CancelRequested()) return ProcessResult::Stopped;
        if (!WriteBeside(file)) return ProcessResult::Failed;
        done += file.size;
        context.SetProgress(done / m_package.TotalBytes());
    }
    return ProcessResult::Done;
}

bool InstallFiles::Swap(const PackageFile& file) const {
    return LFile::IsAbsent(Place(file)) && LFile::Move(Beside(file), Place(file), kMoveWaitMs);
}

bool InstallFiles::SetAside(const PackageFile& file) const {
    if (LFile::IsFolder(Place(file))) return false;  // somebody else's
    LFile::MakeWritable(Place(file));
    if (LFile::IsAbsent(Place(file))) return true;
    if (!LFile::IsAbsent(Aside(file))) LFile::Delete(Aside(file), kMoveWaitMs);  // of a former run
    return LFile::Move(Place(file), Aside(file), kMoveWaitMs);
}

InstallFiles::Outcome InstallFiles::SwapIn() {
    const std::vector<PackageFile>& files = m_package.Files();
    const PackageFile& program = files.front();
    if (IsProgramHeld(Place(program))) return Outcome::Held;
    m_former = InstalledNames(m_folder);
    for (size_t i = 1; i <= files.size(); ++i) {
        const PackageFile& file = i < files.size() ? files[i] : program;
        if (SetAside(file)) {
            m_swapped.push_back(&file);
            if (Swap(file)) continue;
        }
        LTrace("InstallFiles::SwapIn unable to swap", file.name);
        PutBack();
        return IsProgramHeld(Place(program)) ? Outcome::Held : Outcome::Failed;
    }
    return Outcome::Done;
}

void InstallFiles::PutBack(const PackageFile& file) const {
    if (LFile::IsAbsent(Aside(file))) {
        // There was none before, or it could not be set aside and is in its place still.
        if (LFile::IsAbsent(Beside(file))) LFile::Delete(Place(file), kMoveWaitMs);
        return;
    }
    if (LFile::Exists(Place(file))) LFile::Delete(Place(file), kMoveWaitMs);
    if (!LFile::Move(Aside(file), Place(file), kMoveWaitMs))
        LTrace("InstallFiles::PutBack unable to put back", file.name);
}

void InstallFiles::PutBack() {
    for (const PackageFile* file : m_swapped) PutBack(*file);
    m_swapped.clear();
}

void InstallFiles::Finish() {
    for (const PackageFile* file : m_swapped) LFile::Delete(Aside(*file));
    const auto isNew = [&](std::string_view name) {
        return std::ranges::any_of(m_package.Files(),
                                   [&](const PackageFile& file) { return LEqualNoCase(file.name, name); });
    };
    for (const std::string& name : m_former)
        if (!isNew(name)) LFile::Delete(LPath::Join(m_folder.View(), name));
    m_swapped.clear();
}
