#pragma once

#include "audio/mp3/LMP3Source.h"
#include "base/LFile.h"
#include "tests/unit/audio/AudioTest.h"

inline Bytes Mp3File(const char* name) {
    Bytes bytes;
    EXPECT_TRUE(LFile::ReadWhole(LPath::Join(CORVANE_DATA "/mp3", name), 1 << 20, bytes)) << name;
    return bytes;
}
inline constexpr const char* kMp3Files[] = {
    "blocks-44100.mp3",    "blocks-8000.mp3",      "intensity-22050.mp3", "intensity-32000.mp3",
    "speech-16000-24.mp3", "stereo-44100-128.mp3", "stereo-48000-320.mp3"};

struct Mp3Sound {
    explicit Mp3Sound(const Bytes& file, const MP3Kernels& kernels = GetMP3Kernels())
        : source(std::make_unique<LMemoryFile>(file), kernels), told(source.GetLength()) {
        Samples block(size_t{777} * source.GetChannels());
        while (source.GetPosition() < source.GetLength()) {
            source.Read(block.data(), 777);
            samples.insert(samples.end(), block.begin(), block.end());
        }
        samples.resize(static_cast<size_t>(source.GetLength()) * source.GetChannels());
    }

    LMP3Source source;
    int32_t told;  // the length, before anything was decoded
    Samples samples;
};
