#include "app/import/ImportSelection.h"

#include <string_view>

#include "base/LText.h"

ImportSelection ImportSelection::Parse(std::span<const char> buffer) {
    std::vector<std::string_view> texts;
    for (std::string_view rest(buffer.data(), buffer.size()); !rest.empty();) {
        const std::string_view text = LBeforeZero(rest);
        if (text.empty()) break;
        texts.push_back(text);
        rest.remove_prefix(std::min(text.size() + 1, rest.size()));
    }
    ImportSelection chosen;
    if (texts.size() == 1) {
        chosen.folder.Set(LFolderOf(texts[0]));
        chosen.files.emplace_back(texts[0]);
    }
    for (size_t i = 1; i < texts.size(); ++i) {
        chosen.folder.Set(texts[0]);
        chosen.files.push_back(LPath::Join(texts[0], texts[i]));
    }
    return chosen;
}
