#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "base/LLevel.h"
#include "base/LPath.h"

// Typed accessors to INI-style settings files. Nothing is cached: each call reads the file, so two programs
// see the same settings.
// Errors: a missing key gives the default. A failed write of a text returns false; other failed writes are
//         ignored.
// Thread: any.
namespace Settings {

// A key with its section and its default, as store/SettingsKeys.h lists them.
template <class T>
struct Key {
    const char* section;
    const char* key;
    T defaultValue;
};
using IntKey = Key<int32_t>;
using BoolKey = Key<bool>;
using TextKey = Key<const char*>;
using LevelKey = Key<int8_t>;

using ::kSilenceDb;

// A signed decimal number, clamped to 32 bits; an empty or missing value gives the default.
int32_t ReadInt(const LPath& file, std::string_view section, std::string_view key, int32_t defaultValue);
void WriteInt(const LPath& file, std::string_view section, std::string_view key, int32_t value);
// The same in 64 bits: for seconds since 1970, and for user numbers, which are unsigned 32-bit.
int64_t ReadNumber(const LPath& file, std::string_view section, std::string_view key, int64_t defaultValue);
void WriteNumber(const LPath& file, std::string_view section, std::string_view key, int64_t value);
// True exactly when the value begins with a small "t"; a missing key gives the default, an empty value false.
bool ReadBool(const LPath& file, std::string_view section, std::string_view key, bool defaultValue);
void WriteBool(const LPath& file, std::string_view section, std::string_view key, bool value);
std::string ReadText(const LPath& file, std::string_view section, std::string_view key,
                     std::string_view defaultText);
bool WriteText(const LPath& file, std::string_view section, std::string_view key, std::string_view text);
// A time of day "hh:mm:ss", in seconds; a value above 86400 is reduced modulo 86400.
int32_t ReadTime(const LPath& file, std::string_view section, std::string_view key, int32_t defaultSeconds);
void WriteTime(const LPath& file, std::string_view section, std::string_view key, int32_t seconds);
// "dd/mm/yy-hh:mm:ss" of a time in seconds since 1970, without a time-zone shift.
void WriteDateTime(const LPath& file, std::string_view section, std::string_view key, int64_t time);
// A level, "-20dB", or "--dB" for -127 dB and below; text that is no level gives the default.
int8_t ReadLevel(const LPath& file, std::string_view section, std::string_view key, int8_t defaultDb);
void WriteLevel(const LPath& file, std::string_view section, std::string_view key, int8_t levelDb);

// The same by key.
inline int32_t Read(const LPath& file, const IntKey& k) {
    return ReadInt(file, k.section, k.key, k.defaultValue);
}
inline bool Read(const LPath& file, const BoolKey& k) {
    return ReadBool(file, k.section, k.key, k.defaultValue);
}
inline std::string Read(const LPath& file, const TextKey& k) {
    return ReadText(file, k.section, k.key, k.defaultValue);
}
inline int8_t Read(const LPath& file, const LevelKey& k) {
    return ReadLevel(file, k.section, k.key, k.defaultValue);
}
inline void Write(const LPath& file, const IntKey& k, int32_t value) {
    WriteInt(file, k.section, k.key, value);
}
inline void Write(const LPath& file, const BoolKey& k, bool value) {
    WriteBool(file, k.section, k.key, value);
}
inline bool Write(const LPath& file, const TextKey& k, std::string_view text) {
    return WriteText(file, k.section, k.key, text);
}
inline void Write(const LPath& file, const LevelKey& k, int8_t levelDb) {
    WriteLevel(file, k.section, k.key, levelDb);
}

// The parsers by themselves, for values from other sources.
bool ParseBool(std::string_view text);
int32_t ParseTime(std::string_view text);

// Numbered lists inside one section: the count under "<prefix>count", the items under "<prefix><i><suffix>".
// The count is not trusted: reading a list ends after this number of missing items in a row.
inline constexpr int32_t kLargestGap = 16;
std::string ListItemKey(std::string_view prefix, int32_t index, std::string_view suffix = {});
// Moves the value of an item to another index; without a value at the source, the destination is deleted. The
// end of the program at any moment leaves the value under one key or under both, and so does a failure
// (false; also when the file cannot be read for a second). The items behind must then stay where they are.
bool MoveListItem(const LPath& file, std::string_view section, std::string_view prefix, int32_t destination,
                  int32_t source, std::string_view suffix = {});
bool DeleteListItem(const LPath& file, std::string_view section, std::string_view prefix, int32_t index,
                    std::string_view suffix = {});

}  // namespace Settings
