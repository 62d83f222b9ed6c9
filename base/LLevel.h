#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// A level is a signed byte of decibels, -127 (no signal) to 127.
constexpr int8_t kSilenceDb = -127;
constexpr int8_t kMaxDb = 127;

// Levels as the settings file and the dialogs write them: "-20dB", or "--dB" for -127 dB and below.
std::string LFormatLevel(int32_t db);

// Reads that form back. "dB" may be missing, in any case and after blanks; a number beyond the range counts
// as the nearest level. No value for any other text.
std::optional<int8_t> LParseLevel(std::string_view text);
