#pragma once

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/LFile.h"
#include "base/LPath.h"

// A new folder in the platform's temporary folder, removed with everything in it.
class TempFolder {
public:
    TempFolder() : m_path(LFile::MakeTemporary("cvt")) {
        LFile::Delete(m_path);
        LFile::MakeFolder(m_path);
    }
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path.c_str(), ignored);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    // Without a separator at its end.
    const LPath& Path() const { return m_path; }
    LPath File(std::string_view name) const { return LPath::Join(m_path.View(), name); }
    // Makes a folder inside and returns it, with a separator at its end.
    LPath Folder(std::string_view name) const {
        LPath path = File(name);
        LFile::MakeFolder(path);
        path.Append("/");
        return path;
    }
    // The names of the files and folders in a folder, in order.
    static std::vector<std::string> Names(const LPath& folder) {
        std::vector<std::string> names;
        LListFolder(folder, "*",
                    [&](const LFolderEntry& entry) { return names.push_back(entry.name), true; });
        std::sort(names.begin(), names.end());
        return names;
    }

private:
    LPath m_path;
};

// A whole small file as text, empty when it cannot be read, and the reverse.
inline std::string ReadFileText(const LPath& path) {
    std::vector<uint8_t> bytes;
    LFile::ReadWhole(path, size_t{1} << 30, bytes);
    return {bytes.begin(), bytes.end()};
}

inline bool WriteFileText(const LPath& path, std::string_view text) {
    LFile file(path, LFile::Open::CreateNew);
    return file.WriteAll({reinterpret_cast<const uint8_t*>(text.data()), text.size()});
}
