#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/LPath.h"

// A snapshot of the files of one folder: names and sizes, found by name without another access to the disk.
// To find out that a file is absent, some file systems read the whole folder; a command on many dictations
// that asked for each file would take time in proportion to the square of their number (60 s for 10,000).
// Names are compared without regard to case. A missing folder has no files.
// Units:  sizes in bytes. A size can be outdated: some file systems list that of a moment before.
// Thread: any; a listing never changes.
class FolderListing {
public:
    explicit FolderListing(const LPath& folder);

    // False when the listing broke off: a file that it does not name may exist all the same.
    bool IsWhole() const { return m_isWhole; }

    // The paths of all record files, in the order in which the file system yields them.
    std::vector<LPath> Records() const;
    // Size of a file of this folder, given its path or its name; nothing when it is not listed.
    std::optional<int64_t> SizeOf(std::string_view file) const;
    // The paths of all files that share the base name of a path ("00000012.dat", "00000012.bad1", ...), in
    // the order of their names.
    std::vector<LPath> OfBaseName(const LPath& path) const;

private:
    struct File {
        std::string key;  // the name in capitals, for comparison
        std::string name;
        int64_t size;
    };

    std::vector<File>::const_iterator FirstFrom(std::string_view key) const;

    LPath m_folder;
    bool m_isWhole;
    std::vector<File> m_files;           // in the order of their keys
    std::vector<std::string> m_records;  // names, as the file system yields them
};
