#include "base/LLevel.h"

#include "base/LArith.h"
#include "base/LText.h"

static std::string_view WithoutBlanks(std::string_view text) {
    while (!text.empty() && LIsBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && LIsBlank(text.back())) text.remove_suffix(1);
    return text;
}

std::string LFormatLevel(int32_t db) {
    return db <= kSilenceDb ? std::string("--dB") : LFormat("%ddB", db);
}

std::optional<int8_t> LParseLevel(std::string_view text) {
    text = WithoutBlanks(text);
    if (text.size() >= 2 && LEqualNoCase(text.substr(text.size() - 2), "dB"))
        text = WithoutBlanks(text.substr(0, text.size() - 2));
    if (text == "--") return kSilenceDb;
    const std::string_view digits = text.substr(!text.empty() && (text[0] == '-' || text[0] == '+') ? 1 : 0);
    if (digits.empty() || digits.find_first_not_of("0123456789") != std::string_view::npos)
        return std::nullopt;
    return static_cast<int8_t>(Clamp<int32_t>(LParseInt(text), kSilenceDb, kMaxDb));
}
