#include "app/dialogs/PromptTag.h"

#include <algorithm>

#include "base/LText.h"

static bool IsFirst(char c) {
    return c == '_' || (LToUpper(c) >= 'A' && LToUpper(c) <= 'Z');
}

bool IsPlainTag(std::string_view tag) {
    return !tag.empty() && IsFirst(tag.front()) &&
           std::ranges::all_of(tag, [](char c) { return IsFirst(c) || LIsDigit(c) || c == '-' || c == '.'; });
}
