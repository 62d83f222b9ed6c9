#include "audio/mp3/MP3Header.h"

#include <cstring>

#include "base/LTrace.h"

namespace {

constexpr int kMostSkipped = 16384;

constexpr int16_t kKilobits[2][15] = {
    {0, 32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320},
    {0, 8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160},
};
constexpr uint16_t kSampleRates[3][3] = {{44100, 48000, 32000}, {22050, 24000, 16000}, {11025, 12000, 8000}};

bool Refuse(const char* reason) {
    LTrace(reason);
    return false;
}

}  // namespace

bool MP3Header::Accept(const uint8_t* bytes) {
    if (bytes[0] != 0xFF || bytes[1] < 0xE0) return false;
    const int versionBits = bytes[1] >> 3 & 3, layerBits = bytes[1] >> 1 & 3;
    const int rateIndex = bytes[2] >> 4, frequency = bytes[2] >> 2 & 3;
    if (versionBits == 1) return Refuse("MP3Header::ReadHeader version 4???? so skip");
    if (layerBits != 1) return Refuse("MP3Header::ReadHeader not a true layer 3 file");
    if (rateIndex == 0 || rateIndex == 15)
        return Refuse("MP3Header::ReadHeader bitrate is free or forbidden");
    if (frequency >= 3)
        return Refuse(
            "MP3Header::ReadHeader sampling_frequency index >= 3 so assume invalid header and skip");
    version = versionBits == 3 ? kMpeg1 : versionBits == 2 ? kMpeg2 : kMpeg25;
    hasCheckSum = (bytes[1] & 1) == 0;
    bitRate = kKilobits[version == kMpeg1 ? 0 : 1][rateIndex] * 1000;
    frequencyIndex = static_cast<uint8_t>(frequency);
    sampleRate = kSampleRates[version][frequency];
    padding = bytes[2] >> 1 & 1;
    mode = bytes[3] >> 6;
    modeExtension = bytes[3] >> 4 & 3;
    return true;
}

bool MP3Header::ReadHeader(LReadStream& stream) {
    uint8_t bytes[4];
    if (!stream.ReadExact(bytes)) return Refuse("MP3Header::ReadHeader failed because unable to read header");
    for (int skipped = 0; !Accept(bytes);) {
        if (skipped++ == kMostSkipped)
            return Refuse("MP3Header::ReadHeader failed because unable to find header after 16384 bytes");
        std::memmove(bytes, bytes + 1, 3);
        if (!stream.ReadExact(std::span(bytes).last(1)))
            return Refuse("MP3Header::ReadHeader failed because unable to read header2");
    }
    uint8_t checkSum[2];
    if (hasCheckSum && !stream.ReadExact(checkSum))
        return Refuse("MP3Header::ReadHeader failed because unable to read header2");
    return true;
}

size_t MP3Header::SideInfoBytes() const {
    if (version == kMpeg1) return Channels() == 1 ? 17 : 32;
    return Channels() == 1 ? 9 : 17;
}

size_t MP3Header::FrameBytes() const {
    const int32_t bytes = Frames() / 8 * bitRate / sampleRate + padding;
    return static_cast<size_t>(bytes);
}

size_t MP3Header::MainDataBytes() const {
    const size_t before = HeaderBytes() + SideInfoBytes();
    return FrameBytes() > before ? FrameBytes() - before : 0;
}
