#pragma once

#include <string>
#include <vector>

#include "base/LFile.h"
#include "base/LProcess.h"
#include "install/SetupPackage.h"

// The names of the files that an installation has put into a folder, the program last: those of its list
// "corvane.lst", and without one those that every version has. The list is not trusted.
std::vector<std::string> InstalledNames(const LPath& folder);

// Whether a folder holds an installed Corvane, or what a run that was cut off has left of one.
bool HoldsProgram(const LPath& folder);

// Removes these files, and what a run that was cut off left beside them. Returns the names of those that
// stay, since another program holds them. Foreign files of the folder are not touched.
std::vector<std::string> RemoveInstalledFiles(const LPath& folder);

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
    bool HasRoom() const { return LFile::FreeSpaceKb(m_folder) >= NeededKb(m_package); }
    static uint32_t NeededKb(const SetupPackage& package);
    // Writes the files beside their places. Failed: the disk is full, or the package is damaged.
    ProcessResult WriteBeside(ProcessContext& context);
    // Puts the files in their places. Held: the program in the folder is running; the caller ends it, and
    // begins with WriteBeside again.
    enum class Outcome { Done, Held, Failed };
    Outcome SwapIn();
    // After SwapIn: as it was before.
    void PutBack();
    // After SwapIn: removes what was set aside, and the files of the former version that this one does not
    // have. What cannot be removed stays, and is removed by the next run.
    void Finish();

private:
    LPath Place(const PackageFile& file) const { return LPath::Join(m_folder.View(), file.name); }
    LPath Beside(const PackageFile& file) const;
    LPath Aside(const PackageFile& file) const;
    bool WriteBeside(const PackageFile& file) const;
    bool SetAside(const PackageFile& file) const;
    bool Swap(const PackageFile& file) const;
    void PutBack(const PackageFile& file) const;

    const SetupPackage& m_package;
    LPath m_folder;
    std::vector<const PackageFile*> m_swapped;
    std::vector<std::string> m_former;  // names of the former version's files
};

// Whether a program runs, or another program holds its file: then it can be neither replaced nor removed. One
// that is read-only is made writable, since nothing could be told of it.
bool IsProgramHeld(const LPath& program);
