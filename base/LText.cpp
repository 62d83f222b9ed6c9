#include "base/LText.h"

#include <cstdarg>
#include <cstdio>
#include <limits>

std::string LUpper(std::string_view text) {
    std::string upper(text);
    for (char& c : upper) c = LToUpper(c);
    return upper;
}

bool LEqualNoCase(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (size_t i = 0; i < a.size(); ++i) {
        if (LToUpper(a[i]) != LToUpper(b[i])) return false;
    }
    return true;
}

std::string LShownText(std::string_view text) {
    std::string shown(text);
    for (char& c : shown)
        if (static_cast<unsigned char>(c) < 32) c = ' ';
    return shown;
}

std::string LFormat(const char* format, ...) {
    va_list measured;
    va_list written;
    va_start(measured, format);
    va_copy(written, measured);
    const int length = std::vsnprintf(nullptr, 0, format, measured);
    va_end(measured);
    std::string text(length > 0 ? static_cast<size_t>(length) : 0, '\0');
    if (!text.empty()) std::vsnprintf(text.data(), text.size() + 1, format, written);
    va_end(written);
    return text;
}

int64_t LParseInt64(std::string_view text) {
    constexpr uint64_t kMax = static_cast<uint64_t>(std::numeric_limits<int64_t>::max());
    size_t i = 0;
    while (i < text.size() && LIsBlank(text[i])) ++i;
    const bool negative = i < text.size() && text[i] == '-';
    if (i < text.size() && (text[i] == '-' || text[i] == '+')) ++i;
    const uint64_t limit = negative ? kMax + 1 : kMax;
    uint64_t value = 0;
    for (; i < text.size() && LIsDigit(text[i]); ++i) {
        const uint64_t digit = static_cast<uint64_t>(text[i] - '0');
        value = value > (limit - digit) / 10 ? limit : value * 10 + digit;
    }
    return static_cast<int64_t>(negative ? 0 - value : value);
}

int32_t LParseInt(std::string_view text) {
    constexpr int64_t kMin = std::numeric_limits<int32_t>::min();
    constexpr int64_t kMax = std::numeric_limits<int32_t>::max();
    const int64_t value = LParseInt64(text);
    return static_cast<int32_t>(value < kMin ? kMin : value > kMax ? kMax : value);
}

std::string_view LBeforeZero(std::string_view text) {
    return text.substr(0, text.find('\0'));
}
