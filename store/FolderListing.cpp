#include "store/FolderListing.h"

#include <algorithm>

#include "base/LFile.h"
#include "base/LText.h"

FolderListing::FolderListing(const LPath& folder) : m_folder(folder) {
    m_isWhole = LListFolder(folder, "*.*", [&](const LFolderEntry& entry) {
        if (entry.isFolder) return true;
        m_files.push_back({LUpper(entry.name), entry.name, entry.size});
        if (m_files.back().key.ends_with(".DAT")) m_records.push_back(entry.name);
        return true;
    });
    std::sort(m_files.begin(), m_files.end(), [](const File& a, const File& b) { return a.key < b.key; });
}

std::vector<FolderListing::File>::const_iterator FolderListing::FirstFrom(std::string_view key) const {
    return std::lower_bound(m_files.begin(), m_files.end(), key,
                            [](const File& file, std::string_view wanted) { return file.key < wanted; });
}

std::vector<LPath> FolderListing::Records() const {
    std::vector<LPath> records;
    records.reserve(m_records.size());
    for (const std::string& name : m_records) {
        const LPath path = LPath::Join(m_folder.View(), name);
        if (!path.Empty()) records.push_back(path);
    }
    return records;
}

std::optional<int64_t> FolderListing::SizeOf(std::string_view file) const {
    const std::string key = LUpper(LFileNameOf(file));
    const auto found = FirstFrom(key);
    if (found == m_files.end() || found->key != key) return std::nullopt;
    return found->size;
}

std::vector<LPath> FolderListing::OfBaseName(const LPath& path) const {
    const std::string prefix = LUpper(LSplitPath(path.View()).name) + ".";
    std::vector<LPath> files;
    for (auto file = FirstFrom(prefix); file != m_files.end() && file->key.starts_with(prefix); ++file)
        files.push_back(LPath::Join(m_folder.View(), file->name));
    return files;
}
