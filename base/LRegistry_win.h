#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// Single values of the registry.
// Errors: a value that is missing or of another type reads as empty.
// Thread: any.

// A string value, at most 259 characters; empty when it is missing.
std::string LReadRegistryText(HKEY hive, const char* key, const char* value);
std::optional<uint32_t> LReadRegistryNumber(HKEY hive, const char* key, const char* value);

// The key is created when it is missing; false (traced) when the value cannot be stored.
bool LWriteRegistryText(HKEY hive, const char* key, const char* value, std::string_view text);
bool LWriteRegistryNumber(HKEY hive, const char* key, const char* value, uint32_t number);
