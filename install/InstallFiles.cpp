#include "install/InstallFiles.h"

#include <algorithm>

#include "base/LFile.h"
#include "base/LTrace.h"

// The program goes first aside and comes last into its place: while it runs it cannot be moved (Windows 95)
// or must not be replaced under its user's hands, so it decides whether anything is touched.

static constexpr uint32_t kRoomKb = 1024;  // beyond the files: folders, registry, the user's settings

LPath InstallFiles::Named(const PackageFile& file, const char* ending) const {
    LPath path = Place(file);
    return path.Append(ending) ? path : LPath();
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

bool InstallFiles::HasRoom() const {
    return LFile::FreeSpaceKb(m_folder) >= m_package.TotalBytes() / 1024 + kRoomKb;
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

InstallFiles::Outcome InstallFiles::SwapIn() {
    const std::vector<PackageFile>& files = m_package.Files();
    const auto setAside = [&](const PackageFile& file) {
        if (LFile::IsFolder(Place(file))) return false;  // somebody else's
        return LFile::IsAbsent(Place(file)) || LFile::Move(Place(file), Aside(file), kMoveWaitMs);
    };
    if (!setAside(files.front()))
        return LFile::Exists(Place(files.front())) ? Outcome::Held : Outcome::Failed;
    m_swapped.push_back(&files.front());
    bool isDone = true;
    for (size_t i = 1; isDone && i < files.size(); ++i) {
        m_swapped.push_back(&files[i]);
        isDone = setAside(files[i]) && Swap(files[i]);
    }
    if (isDone && Swap(files.front())) return Outcome::Done;
    LTrace("InstallFiles::SwapIn unable to swap", m_folder.View());
    PutBack();
    return Outcome::Failed;
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
    m_swapped.clear();
}
