#include "audio/LWaveHeader.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "base/LWaveFileFormat.h"

LWaveHeader WavePcmHeader(int bytesPerSample, uint8_t channels, int32_t sampleRate, uint32_t dataBytes) {
    const LWaveFileFormat format = LWaveFileFormat::Pcm(static_cast<uint16_t>(bytesPerSample * 8), channels,
                                                        static_cast<uint32_t>(sampleRate));
    LWaveHeader head;
    auto at = head.begin();
    const auto bytes = [&at](auto source) { at = std::copy(source.begin(), source.end(), at); };
    const auto u32 = [&at](uint32_t value) {
        for (int i = 0; i < 4; ++i, value >>= 8) *at++ = static_cast<uint8_t>(value);
    };
    bytes(std::string_view("RIFF"));
    u32(dataBytes == kWaveSizeUnknown ? kWaveSizeUnknown : dataBytes + kWaveSizeBeforeData);
    bytes(std::string_view("WAVEfmt "));
    u32(LWaveFileFormat::kFixedSize);
    bytes(format.Record().first(LWaveFileFormat::kFixedSize));
    bytes(std::string_view("data"));
    u32(dataBytes);
    return head;
}

bool WaveHeadersAgree(const LWaveHeader& a, const LWaveHeader& b) {
    const auto same = [&](size_t from, size_t count) { return std::memcmp(&a[from], &b[from], count) == 0; };
    return same(0, 4) && same(8, kWaveHeaderBytes - 4 - 8);
}
