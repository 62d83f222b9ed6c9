#include "base/LWaveFileFormat.h"

#include <algorithm>

#include "base/LBytes.h"

LWaveFileFormat::LWaveFileFormat() : LWaveFileFormat(Pcm(8, 1, 8000)) {}

LWaveFileFormat LWaveFileFormat::Pcm(uint16_t bits, uint16_t channels, uint32_t sampleRate) {
    const uint32_t blockAlign = uint32_t{channels} * ((uint32_t{bits} + 7) / 8);
    LByteWriter record;
    record.U16(kFormatTagPcm);
    record.U16(channels);
    record.U32(sampleRate);
    record.U32(sampleRate * blockAlign);
    record.U16(static_cast<uint16_t>(blockAlign));
    record.U16(bits);
    record.U16(0);
    return LWaveFileFormat(record.View());
}

LWaveFileFormat::LWaveFileFormat(std::span<const uint8_t> bytes) {
    std::copy_n(bytes.begin(), std::min(bytes.size(), kSize), m_bytes.begin());
}

uint16_t LWaveFileFormat::ExtraBytes() const {
    return std::min(U16(16), static_cast<uint16_t>(kSize - kFixedSize));
}

uint16_t LWaveFileFormat::U16(size_t offset) const {
    return LByteReader(std::span(m_bytes).subspan(offset)).U16();
}

uint32_t LWaveFileFormat::U32(size_t offset) const {
    return LByteReader(std::span(m_bytes).subspan(offset)).U32();
}
