#pragma once

#include <cstdint>

// The user whom the logged-on Windows user chose last: the value "CurrentUser" in his part of the registry.

// False when there is no such value.
bool ReadRegistryUser(uint32_t& user);
void WriteRegistryUser(uint32_t user);
