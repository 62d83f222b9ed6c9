#pragma once

#include <cstdint>
#include <span>

// Base64 by the standard alphabet, with "=" padding and without line ends.
constexpr size_t Base64Size(size_t bytes) {
    return (bytes + 2) / 3 * 4;
}

// Writes Base64Size(bytes.size()) characters and returns their end.
char* Base64Encode(std::span<const uint8_t> bytes, char* text);
