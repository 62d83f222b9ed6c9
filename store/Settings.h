#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "base/LLevel.h"
#include "base/LPath.h"

// Typed accessors to INI-style settings files. Nothing is cached: each call asks the file.
// Errors: a read of what is missing yields the default; a failed write of a text returns false, others are ignored.
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

// Signed decimal; an empty or absent value yields the default.
int32_t ReadInt(const LPath& file, std::string_view section, std::string_view key, int32_t defaultValue);
void WriteInt(const LPath& file, std::string_view section, std::string_view key, int32_t value);
// Decimal as above in 64 bits: seconds since 1970, and user numbers, which have 32 bits without a sign.
int64_t ReadNumber(const LPath& file, std::string_view section, std::string_view key, int64_t defaultValue);
void WriteNumber(const LPath& file, std::string_view section, std::string_view key, int64_t value);
// True exactly when the value begins with "t"; absent yields the default, an empty value is false.
bool ReadBool(const LPath& file, std::string_view section, std::string_view key, bool defaultValue);
void WriteBool(const LPath& file, std::string_view section, std::string_view key, bool value);
std::string ReadText(const LPath& file, std::string_view section, std::string_view key,
                     std::string_view defaultText);
bool WriteText(const LPath& file, std::string_view section, std::string_view key, std::string_view text);
// "hh:mm:ss"; what exceeds 86400 seconds is reduced modulo 86400.
int32_t ReadTime(const LPath& file, std::string_view section, std::string_view key, int32_t defaultSeconds);
void WriteTime(const LPath& file, std::string_view section, std::string_view key, int32_t seconds);
// "dd/mm/yy-hh:mm:ss" of a moment in seconds since 1970, with no time-zone shift.
void WriteDateTime(const LPath& file, std::string_view section, std::string_view key, int64_t time);
// "-20dB", or "--dB" for -127 dB and below; what is no level at all yields the default.
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

// The text forms by themselves.
bool ParseBool(std::string_view text);
int32_t ParseTime(std::string_view text);

// Numbered lists inside one section: the count under "<prefix>count", the items under "<prefix><i><suffix>".
// A count may promise anything, so a list ends at so many missing items in a row.
inline constexpr int32_t kLargestGap = 16;
std::string ListItemKey(std::string_view prefix, int32_t index, std::string_view suffix = {});
// Takes the value of one item away and gives it to another; an item without a key leaves none. Whenever the
// program ends, the value is under one key or under both.
void MoveListItem(const LPath& file, std::string_view section, std::string_view prefix, int32_t destination,
                  int32_t source, std::string_view suffix = {});
void DeleteListItem(const LPath& file, std::string_view section, std::string_view prefix, int32_t index,
                    std::string_view suffix = {});

}  // namespace Settings
