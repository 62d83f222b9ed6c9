#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/LPath.h"

// The files of one folder as they were when it was listed: which there are, and how long they are, found by
// name without another look at the disk. Some file systems read the whole folder for each look at a file that
// is not there, so whoever deals with many dictations lists their folder once. Names are compared without
// regard to case. A folder that is missing has no files.
// Thread: any; a listing never changes.
class FolderListing {
public:
    explicit FolderListing(const LPath& folder);

    // False when the listing broke off: what it does not name may be there all the same.
    bool IsWhole() const { return m_isWhole; }

    // The paths of all record files, in the order in which the file system yields them.
    std::vector<LPath> Records() const;
    // Bytes of a file of this folder, given its path or its name; nothing where there is none.
    std::optional<int64_t> SizeOf(std::string_view file) const;
    // The paths of all files that share the base name of a path ("00000012.dat", "00000012.bad1", ...), in the
    // order of their names.
    std::vector<LPath> OfBaseName(const LPath& path) const;

private:
    struct File {
        std::string key;  // the name in capitals
        std::string name;
        int64_t size;
    };

    std::vector<File>::const_iterator FirstFrom(std::string_view key) const;

    LPath m_folder;
    bool m_isWhole;
    std::vector<File> m_files;           // in the order of their keys
    std::vector<std::string> m_records;  // names, as the file system yields them
};
