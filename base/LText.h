#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// Text helpers for ASCII, without regard to the locale: files and commands must read the same on every
// machine.
constexpr bool LIsDigit(char c) {
    return c >= '0' && c <= '9';
}
constexpr bool LIsBlank(char c) {
    return c == ' ' || c == '\t';
}
constexpr char LToUpper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

std::string LUpper(std::string_view text);
bool LEqualNoCase(std::string_view a, std::string_view b);

// printf into a text of any length.
std::string LFormat(const char* format, ...) __attribute__((format(printf, 1, 2)));

// Decimal text to a number: blanks, a sign, then digits up to the first other character. A text without
// digits is 0; a number that does not fit is the nearest limit.
int64_t LParseInt64(std::string_view text);
int32_t LParseInt(std::string_view text);

// A text from a file as it is shown in one line: each byte below 32 is a blank.
std::string LShownText(std::string_view text);

// The text before its first zero byte (the whole of it when it holds none).
std::string_view LBeforeZero(std::string_view text);
