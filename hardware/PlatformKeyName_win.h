#pragma once

#include <cstdint>
#include <string>

// The platform's name of a key (KeyNamer of hardware/KeyText.h).
std::string PlatformKeyName(int32_t virtualKey, bool isExtended);
