#include "send/MailedFiles.h"

#include <algorithm>
#include <vector>

#include "base/LFile.h"
#include "base/LText.h"
#include "base/LTime.h"
#include "base/LTrace.h"

// The names are those of SendItem::OutputPath.

static constexpr uint64_t kDay = 86400 * kFileTimeSecond;

static bool IsNumber(std::string_view text) {
    return !text.empty() && std::ranges::all_of(text, LIsDigit);
}

// "dct00007-00012.dct" or "wav00007-00012.wav".
static bool IsConverted(std::string_view fileName) {
    const LPathParts parts = LSplitPath(fileName);
    const std::string_view name = parts.name;
    for (const std::string_view kind : {"dct", "wav"}) {
        if (!LEqualNoCase(name.substr(0, kind.size()), kind) || parts.extension.empty() ||
            !LEqualNoCase(parts.extension.substr(1), kind))
            continue;
        const std::string_view numbers = name.substr(kind.size());
        const size_t dash = numbers.find('-');
        return dash != std::string_view::npos && IsNumber(numbers.substr(0, dash)) &&
               IsNumber(numbers.substr(dash + 1));
    }
    return false;
}

void RemoveMailedFiles(const LPath& sentFolder, int64_t now) {
    const uint64_t time = kFileTimeOf1970 + static_cast<uint64_t>(now) * kFileTimeSecond;
    std::vector<LPath> old;
    LListFolder(sentFolder, "*.*", [&](const LFolderEntry& entry) {
        if (!entry.isFolder && entry.written + kDay < time && IsConverted(entry.name))
            old.push_back(LPath::Join(sentFolder.View(), entry.name));
        return true;
    });
    for (const LPath& path : old) {
        LTrace("RemoveMailedFiles file of a mail", path.View());
        LFile::Delete(path);
    }
}
