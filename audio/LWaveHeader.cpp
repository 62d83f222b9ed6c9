#include "audio/LWaveHeader.h"

#include <algorithm>

#include "base/LWaveFileFormat.h"

LByteWriter WavePcmHeader(int bytesPerSample, uint8_t channels, int32_t sampleRate, uint32_t dataBytes) {
    const LWaveFileFormat format = LWaveFileFormat::Pcm(static_cast<uint16_t>(bytesPerSample * 8), channels,
                                                        static_cast<uint32_t>(sampleRate));
    LByteWriter out;
    out.Text("RIFF");
    out.U32(dataBytes == kWaveSizeUnknown ? kWaveSizeUnknown : dataBytes + kWaveSizeBeforeData);
    out.Text("WAVEfmt ");
    out.U32(LWaveFileFormat::kFixedSize);
    out.Bytes(format.Record());
    out.Text("data");
    out.U32(dataBytes);
    return out;
}

bool WaveHeadersAgree(std::span<const uint8_t> a, std::span<const uint8_t> b) {
    const auto same = [&](size_t from, size_t to) {
        return std::equal(a.begin() + static_cast<ptrdiff_t>(from), a.begin() + static_cast<ptrdiff_t>(to),
                          b.begin() + static_cast<ptrdiff_t>(from));
    };
    constexpr size_t kSize = static_cast<size_t>(kWaveHeaderBytes);
    return a.size() >= kSize && b.size() >= kSize && same(0, 4) && same(8, kSize - 4);
}
