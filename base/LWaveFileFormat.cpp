#include "base/LWaveFileFormat.h"

#include <algorithm>

#include "base/LBytes.h"
#include "base/LStream.h"

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

bool LIsWholeWave(LReadStream& file) {
    constexpr uint32_t kRiff = 0x46464952;  // "RIFF", little-endian
    constexpr uint32_t kWave = 0x45564157;  // "WAVE"
    constexpr int64_t kBeforeSize = 8;      // "RIFF" and the size itself, which the size leaves out
    std::array<uint8_t, 12> head;
    if (!file.Seek(0) || !file.ReadExact(head)) return false;
    LByteReader in(head);
    const bool isRiff = in.U32() == kRiff;
    const int64_t size = in.U32() + kBeforeSize;
    return isRiff && in.U32() == kWave && size == file.Size();
}
