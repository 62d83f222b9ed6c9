#include "base/LCrc32.h"

#include <array>

static constexpr uint32_t kPolynomial = 0xEDB88320;

static constexpr std::array<uint32_t, 256> kTable = [] {
    std::array<uint32_t, 256> table{};
    for (uint32_t i = 0; i < table.size(); ++i) {
        uint32_t value = i;
        for (int bit = 0; bit < 8; ++bit) value = value >> 1 ^ (value & 1 ? kPolynomial : 0);
        table[i] = value;
    }
    return table;
}();

void LCrc32::Add(std::span<const uint8_t> bytes) {
    uint32_t state = m_state;
    for (const uint8_t byte : bytes) state = state >> 8 ^ kTable[(state ^ byte) & 0xFF];
    m_state = state;
}
