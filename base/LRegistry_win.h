#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/LFile.h"

// Single values of the registry.
// Errors: a value that is missing or of another type reads as empty.
// Thread: any.

// A string value, at most 259 characters; empty when it is missing.
std::string LReadRegistryText(HKEY hive, const char* key, const char* value);
std::optional<uint32_t> LReadRegistryNumber(HKEY hive, const char* key, const char* value);

// The key is created when it is missing; false (traced) when the value cannot be stored.
bool LWriteRegistryText(HKEY hive, const char* key, const char* value, std::string_view text);
bool LWriteRegistryNumber(HKEY hive, const char* key, const char* value, uint32_t number);

// A value as it is stored, of any type, at most 4096 bytes; nothing when it is missing or longer.
struct LRegistryValue {
    DWORD type = 0;
    std::vector<BYTE> bytes;
};
std::optional<LRegistryValue> LReadRegistryValue(HKEY hive, const char* key, const char* value);
bool LWriteRegistryValue(HKEY hive, const char* key, const char* value, const LRegistryValue& data);
// A list of texts (REG_MULTI_SZ), each ended by a zero, with all characters, some of which the code page may
// not have; at most 1 MB. Not on Windows 95 and 98. Unreadable: it is there, and too long or of another type.
LReadResult LReadRegistryTexts(HKEY hive, const char* key, const wchar_t* value, std::wstring& texts);
bool LWriteRegistryTexts(HKEY hive, const char* key, const wchar_t* value, std::wstring_view texts);
// True when the value is not there afterwards.
bool LDeleteRegistryValue(HKEY hive, const char* key, const char* value);
// Deletes a key that holds neither values nor keys; true when it is not there afterwards.
bool LDeleteEmptyRegistryKey(HKEY hive, const char* key);
// Whether values can be stored in the key, or, as long as it is missing, keys be made in the one above it.
bool LMayWriteRegistry(HKEY hive, std::string_view key);
