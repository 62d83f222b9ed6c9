#pragma once

#include <cstdint>

// The user number that the logged-on Windows user chose last: the value "CurrentUser" in his part of the
// registry. Portable code calls these; the test build has a substitute.

// False, with user unchanged, when there is no such value.
bool ReadRegistryUser(uint32_t& user);
void WriteRegistryUser(uint32_t user);
// As if no user had been chosen.
void ForgetRegistryUser();
