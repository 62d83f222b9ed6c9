#pragma once

#include <vector>

#include "base/LPath.h"
#include "base/LProcess.h"
#include "install/SetupPackage.h"

// Puts the files of a package into a folder, all of them or none. Each is written beside its place and
// flushed first; then what is there goes aside and the new files take their places, the program last. Until
// Finish everything can be put back.
// A run that was cut off leaves files aside: Recover, at the begin of the next run, gives them their names
// back. Foreign files of the folder are not touched.
// Errors: false (traced), with the folder as it was, but where something cannot be put back either.
// Thread: one at a time.
class InstallFiles {
public:
    InstallFiles(const SetupPackage& package, const LPath& folder) : m_package(package), m_folder(folder) {}
    // Removes what is still beside, as after a failed run.
    ~InstallFiles();
    InstallFiles(const InstallFiles&) = delete;
    InstallFiles& operator=(const InstallFiles&) = delete;

    // Puts back what a run that was cut off set aside, and removes what it left beside.
    void Recover() const;
    // Whether the drive has room for the files while the old ones are there, too.
    bool HasRoom() const;
    // Writes the files beside their places. Failed: the disk is full, or the package is damaged.
    ProcessResult WriteBeside(ProcessContext& context);
    // Puts the files in their places. Held: the program in the folder is running, and nothing was changed; the
    // caller ends it and tries again.
    enum class Outcome { Done, Held, Failed };
    Outcome SwapIn();
    // After SwapIn: as it was before.
    void PutBack();
    // After SwapIn: removes what was set aside. What cannot be removed stays, and is removed by the next run.
    void Finish();

private:
    LPath Place(const PackageFile& file) const { return LPath::Join(m_folder.View(), file.name); }
    LPath Beside(const PackageFile& file) const { return Named(file, ".new~"); }
    LPath Aside(const PackageFile& file) const { return Named(file, ".old~"); }
    LPath Named(const PackageFile& file, const char* ending) const;
    bool WriteBeside(const PackageFile& file) const;
    bool Swap(const PackageFile& file) const;
    void PutBack(const PackageFile& file) const;

    const SetupPackage& m_package;
    LPath m_folder;
    std::vector<const PackageFile*> m_swapped;
};
