#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/LProcess.h"
#include "base/LStream.h"

// Install markers: an executable that ends in one of these four bytes is an installer, any other is the
// program.
constexpr uint32_t kMarkerSetup = 0x0F0FF0F0;
constexpr uint32_t kMarkerUpdate = 0xF0F00F0F;

// Whether a file that is installed may have this name: a plain one of letters, digits and "-._", without a
// folder, and of no device.
bool IsInstallableName(std::string_view name);

// One file of a package.
struct PackageFile {
    std::string name;     // a plain file name, without a folder
    uint32_t offset = 0;  // bytes from the start of the package
    uint32_t size = 0;    // bytes
    uint32_t time = 0;    // last write time, seconds since 1970-01-01 00:00 UTC
    uint32_t crc = 0;     // LCrc32 of its bytes
};

// The program with the files that it installs behind itself (docs/file-formats.md, "Set-up package"). Each
// byte of the package belongs to one of its files, to the directory, or to the 12 bytes at the end, and is
// under a check sum: one that was cut off or changed anywhere is refused. It comes from a download, so
// nothing in it is trusted (docs/hostile-input.md).
// Units: bytes. Thread: one at a time.
class SetupPackage {
public:
    // The longest package and directory that are accepted.
    static constexpr uint32_t kLongest = uint32_t{64} << 20;
    static constexpr uint32_t kMostFiles = 200;

    // Reads and checks the directory; nothing when the package is damaged. The stream must outlive the
    // object.
    static std::optional<SetupPackage> Open(LReadStream& package);

    uint32_t Marker() const { return m_marker; }
    // The first is the program, without what follows it.
    const std::vector<PackageFile>& Files() const { return m_files; }
    // The sum of all sizes.
    uint32_t TotalBytes() const;

    // Compares every file with its check sum. Failed: the package is damaged.
    ProcessResult Check(ProcessContext& context) const;
    // Writes one file of the package, comparing it once more. False when it cannot be read or written, or is
    // damaged; the target then holds part of it.
    bool Extract(const PackageFile& file, LStream& target) const;

private:
    SetupPackage(LReadStream& package, uint32_t marker, std::vector<PackageFile> files)
        : m_package(&package), m_marker(marker), m_files(std::move(files)) {}

    // Calls take with each block of a file; false when it is damaged or take returns false.
    template <class Take>
    bool ForBlocks(const PackageFile& file, Take take) const;

    LReadStream* m_package;
    uint32_t m_marker;
    std::vector<PackageFile> m_files;
};
