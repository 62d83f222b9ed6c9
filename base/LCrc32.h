#pragma once

#include <cstdint>
#include <span>

// The CRC-32 of ISO 3309 and ITU-T V.42 (reflected polynomial EDB88320, begun and ended with all bits
// inverted), as ZIP and PNG files use it. The check value of the text "123456789" is CBF43926.
class LCrc32 {
public:
    void Add(std::span<const uint8_t> bytes);
    uint32_t Value() const { return ~m_state; }

    static uint32_t Of(std::span<const uint8_t> bytes) {
        LCrc32 crc;
        crc.Add(bytes);
        return crc.Value();
    }

private:
    uint32_t m_state = ~uint32_t{0};
};
