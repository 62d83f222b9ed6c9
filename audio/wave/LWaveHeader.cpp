#include "audio/wave/LWaveHeader.h"

#include <algorithm>
#include <cstring>

#include "base/LBytes.h"

std::vector<uint8_t> WaveHeader(const LWaveFileFormat& format, uint32_t dataBytes) {
    const uint32_t beforeData = kWaveSizeBeforeData + format.ExtraBytes();
    LByteWriter head;
    head.Text("RIFF");
    head.U32(dataBytes == kWaveSizeUnknown ? kWaveSizeUnknown : dataBytes + beforeData);
    head.Text("WAVEfmt ");
    head.U32(static_cast<uint32_t>(format.Record().size()));
    head.Bytes(format.Record());
    head.Text("data");
    head.U32(dataBytes);
    return {head.View().begin(), head.View().end()};
}

LWaveHeader WavePcmHeader(int bytesPerSample, uint8_t channels, int32_t sampleRate, uint32_t dataBytes) {
    const LWaveFileFormat format = LWaveFileFormat::Pcm(static_cast<uint16_t>(bytesPerSample * 8), channels,
                                                        static_cast<uint32_t>(sampleRate));
    LWaveHeader head;
    std::ranges::copy(WaveHeader(format, dataBytes), head.begin());
    return head;
}

bool WaveHeadersAgree(const LWaveHeader& a, const LWaveHeader& b) {
    const auto same = [&](size_t from, size_t count) { return std::memcmp(&a[from], &b[from], count) == 0; };
    return same(0, 4) && same(8, kWaveHeaderBytes - 4 - 8);
}
