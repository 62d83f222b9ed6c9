#include "store/DictationFiles.h"

#include <string>

#include "base/LFile.h"
#include "base/LLeftOver.h"
#include "base/LText.h"
#include "base/LTime.h"

DictationFiles DictationFiles::OfNumber(const LPath& folder, int32_t number) {
    return OfPath(LPath::Format("%s%.8ld.dat", folder.c_str(), static_cast<long>(number)));
}

DictationFiles DictationFiles::OfPath(const LPath& path) {
    return {path.WithExtension(".dat"), path.WithExtension(".wav"), path.WithExtension(".txt")};
}

DictationFiles DictationFiles::InFolder(const LPath& folder) const {
    return OfPath(LPath::Join(folder.View(), LFileNameOf(record.View())));
}

// One listing answers for the three names: to find out that a name is absent, some file systems read the
// whole folder, so three separate look-ups would cost three times as much.
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

bool DictationFiles::IsGone() const {
    constexpr uint32_t kReplaceMs = 200;
    const uint32_t start = LTickMs();
    const LPath folder = LPath(LFolderOf(record.View())).WithoutSeparator();
    const LPath move = LPath::Join(LFolderOf(folder.View()), LLeftOver::kMove);
    while (LFile::IsAbsent(record)) {
        if (LTickMs() - start >= kReplaceMs) return LFile::IsFolder(folder) && LFile::IsAbsent(move);
        LSleep(20);
    }
    return false;
}
