#include "store/DictationFiles.h"

#include <string>

#include "base/LFile.h"
#include "base/LText.h"

DictationFiles DictationFiles::OfNumber(const LPath& folder, int32_t number) {
    return OfPath(LPath::Format("%s%.8ld.dat", folder.c_str(), static_cast<long>(number)));
}

DictationFiles DictationFiles::OfPath(const LPath& path) {
    return {path.WithExtension(".dat"), path.WithExtension(".wav"), path.WithExtension(".txt")};
}

DictationFiles DictationFiles::InFolder(const LPath& folder) const {
    return OfPath(LPath::Join(folder.View(), LFileNameOf(record.View())));
}

// One listing for the three: where a name is missing there are systems that read the whole folder to find out.
bool DictationFiles::AnyExists() const {
    const LPathParts parts = LSplitPath(record.View());
    bool any = false;
    LListFolder(LPath(LFolderOf(record.View())), std::string(parts.name) + ".*",
                [&](const LFolderEntry& entry) {
                    const std::string_view extension = LSplitPath(entry.name).extension;
                    for (const char* ours : {".dat", ".wav", ".txt"})
                        any = any || (!entry.isFolder && LEqualNoCase(extension, ours));
                    return !any;
                });
    return any;
}
