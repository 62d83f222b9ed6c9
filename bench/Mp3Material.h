#pragma once

#include <memory>
#include <vector>

#include "audio/mp3/LMP3Source.h"
#include "base/LFile.h"
#include "base/LMemoryFile.h"

// The MP3 files that the benches decode.
struct Mp3Material {
    const char* file;
    const char* ours;
    const char* plain;
    const char* peers;
};
inline constexpr Mp3Material kMp3Materials[] = {
    {"stereo-44100-128.mp3", "Mp3At44100", "Mp3At44100Plain", "Mp3At44100OfPeer"},
    {"stereo-48000-320.mp3", "Mp3At48000", "Mp3At48000Plain", "Mp3At48000OfPeer"},
    {"speech-16000-24.mp3", "Mp3At16000", "Mp3At16000Plain", "Mp3At16000OfPeer"},
};

inline std::vector<uint8_t> ReadMp3(const Mp3Material& material) {
    std::vector<uint8_t> bytes;
    LFile::ReadWhole(LPath::Join(CORVANE_DATA "/mp3", material.file), 1 << 20, bytes);
    return bytes;
}

inline std::unique_ptr<LMP3Source> OpenMp3(const std::vector<uint8_t>& bytes,
                                           const MP3Kernels& kernels = GetMP3Kernels()) {
    return std::make_unique<LMP3Source>(std::make_unique<LMemoryFile>(bytes), kernels);
}
