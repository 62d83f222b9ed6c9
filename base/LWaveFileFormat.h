#pragma once

#include <array>
#include <cstdint>
#include <span>

constexpr uint16_t kFormatTagPcm = 1;

class LReadStream;

// A wave format description: the platform's extended wave format record in a buffer of 1024 bytes, held as
// bytes so that files are read and written without a conversion. Little-endian:
//   0 tag u16, 2 channels u16, 4 samples per second u32, 8 average bytes per second u32,
//   12 block align u16, 14 bits per sample u16, 16 extra byte count u16, 18 extra bytes
// The fields are claims of the file that the record comes from; LAcmRecord (audio/wave) mends them.
// Thread: any; it does not change once it is built.
class LWaveFileFormat {
public:
    static constexpr size_t kSize = 1024;
    static constexpr size_t kFixedSize = 18;

    // PCM, 1 channel, 8000 samples per second, 8 bits.
    LWaveFileFormat();
    static LWaveFileFormat Pcm(uint16_t bits, uint16_t channels, uint32_t sampleRate);
    // Takes up to 1024 bytes of a record; missing bytes are zero.
    explicit LWaveFileFormat(std::span<const uint8_t> bytes);

    uint16_t Tag() const { return U16(0); }
    uint16_t Channels() const { return U16(2); }
    uint32_t SampleRate() const { return U32(4); }
    uint32_t AverageBytesPerSecond() const { return U32(8); }
    uint16_t BlockAlign() const { return U16(12); }
    uint16_t BitsPerSample() const { return U16(14); }
    // Never more than the buffer holds.
    uint16_t ExtraBytes() const;

    std::span<const uint8_t, kSize> Bytes() const { return m_bytes; }
    // The 18 fixed bytes and the extra bytes.
    std::span<const uint8_t> Record() const { return std::span(m_bytes).first(kFixedSize + ExtraBytes()); }

private:
    uint16_t U16(size_t offset) const;
    uint32_t U32(size_t offset) const;

    std::array<uint8_t, kSize> m_bytes{};
};

// Whether the size in a WAV file's head is the size of the file. Our sinks write that size last, so a file of
// ours with it is complete.
bool LIsWholeWave(LReadStream& file);
