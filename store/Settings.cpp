#include "store/Settings.h"

#include "base/LArith.h"
#include "base/LFile.h"
#include "base/LProfile.h"
#include "base/LText.h"
#include "base/LTime.h"

namespace Settings {

constexpr int32_t kDaySeconds = 86400;
// Default that marks a missing key: a control byte cannot be a value.
constexpr char kAbsent[] = "\x01";

int64_t ReadNumber(const LPath& file, std::string_view section, std::string_view key, int64_t defaultValue) {
    const std::string text = LProfile::Read(file, section, key, {});
    return text.empty() ? defaultValue : LParseInt64(text);
}

void WriteNumber(const LPath& file, std::string_view section, std::string_view key, int64_t value) {
    LProfile::Write(file, section, key, std::to_string(value));
}

int32_t ReadInt(const LPath& file, std::string_view section, std::string_view key, int32_t defaultValue) {
    return Saturate(ReadNumber(file, section, key, defaultValue));
}

void WriteInt(const LPath& file, std::string_view section, std::string_view key, int32_t value) {
    WriteNumber(file, section, key, value);
}

bool ParseBool(std::string_view text) {
    return text.starts_with('t');
}

bool ReadBool(const LPath& file, std::string_view section, std::string_view key, bool defaultValue) {
    return ParseBool(LProfile::Read(file, section, key, defaultValue ? "true" : ""));
}

void WriteBool(const LPath& file, std::string_view section, std::string_view key, bool value) {
    LProfile::Write(file, section, key, value ? "true" : "false");
}

std::string ReadText(const LPath& file, std::string_view section, std::string_view key,
                     std::string_view defaultText) {
    return LProfile::Read(file, section, key, defaultText);
}

bool WriteText(const LPath& file, std::string_view section, std::string_view key, std::string_view text) {
    return LProfile::Write(file, section, key, text);
}

int32_t ParseTime(std::string_view text) {
    constexpr int64_t kMost = 1 << 30;  // limits each field, so that the sum cannot overflow with any text
    int64_t fields[3] = {};
    size_t field = 0;
    for (char c : text) {
        if (c == ':' && field < 2) ++field;
        if (LIsDigit(c)) fields[field] = Clamp<int64_t>(fields[field] * 10 + (c - '0'), 0, kMost);
    }
    const int64_t seconds = fields[0] * 3600 + fields[1] * 60 + fields[2];
    return static_cast<int32_t>(seconds > kDaySeconds ? seconds % kDaySeconds : seconds);
}

int32_t ReadTime(const LPath& file, std::string_view section, std::string_view key, int32_t defaultSeconds) {
    const std::string text = LProfile::Read(file, section, key, {});
    return text.empty() ? defaultSeconds : ParseTime(text);
}

void WriteTime(const LPath& file, std::string_view section, std::string_view key, int32_t seconds) {
    const int s = seconds < 0 ? 0 : seconds;
    LProfile::Write(file, section, key, LFormat("%.2d:%.2d:%.2d", s / 3600, s / 60 % 60, s % 60));
}

void WriteDateTime(const LPath& file, std::string_view section, std::string_view key, int64_t time) {
    const LCalendar c = LToCalendar(time);
    LProfile::Write(
        file, section, key,
        LFormat("%.2d/%.2d/%.2d-%.2d:%.2d:%.2d", c.day, c.month, c.year % 100, c.hour, c.minute, c.second));
}

// Invalid text gives the default, not 0 dB: with a threshold of 0 dB, voice activation would never hear
// anything.
int8_t ReadLevel(const LPath& file, std::string_view section, std::string_view key, int8_t defaultDb) {
    return LParseLevel(LProfile::Read(file, section, key, {})).value_or(defaultDb);
}

void WriteLevel(const LPath& file, std::string_view section, std::string_view key, int8_t levelDb) {
    LProfile::Write(file, section, key, LFormatLevel(levelDb));
}

std::string ListItemKey(std::string_view prefix, int32_t index, std::string_view suffix) {
    return std::string(prefix) + std::to_string(index) + std::string(suffix);
}

// A source that cannot be read is not one without a value: its destination would be deleted, and with it an
// item that stands nowhere else.
bool MoveListItem(const LPath& file, std::string_view section, std::string_view prefix, int32_t destination,
                  int32_t source, std::string_view suffix) {
    const std::string from = ListItemKey(prefix, source, suffix);
    const std::string to = ListItemKey(prefix, destination, suffix);
    const LProfileSection items(file, section, kReadWaitMs);
    if (items.Result() == LReadResult::Unreadable) return false;
    const std::string value = items.Read(from, kAbsent);
    // The destination is written first: a value that is there twice is recognised, one that is nowhere is
    // lost.
    const bool isWritten =
        value == kAbsent ? LProfile::Delete(file, section, to) : LProfile::Write(file, section, to, value);
    return isWritten && LProfile::Delete(file, section, from);
}

bool DeleteListItem(const LPath& file, std::string_view section, std::string_view prefix, int32_t index,
                    std::string_view suffix) {
    return LProfile::Delete(file, section, ListItemKey(prefix, index, suffix));
}

}  // namespace Settings
