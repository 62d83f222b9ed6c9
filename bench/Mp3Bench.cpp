#include "bench/Mp3Material.h"

#include <benchmark/benchmark.h>

#ifdef CORVANE_HAS_MPG123
#include <mpg123.h>
#endif

#include "bench/Ratios.h"

// Decoding of short MP3 files from memory, by our two versions of the loops and by the fastest decoder of the
// peer. The peer gives 16-bit samples, which is what it is fastest at; ours are those of the pipeline.

namespace {

void DecodeOurs(benchmark::State& state, const Mp3Material& material, const MP3Kernels& kernels) {
    const std::vector<uint8_t> file = ReadMp3(material);
    std::vector<int32_t> block(size_t{2} * kBlockFrames);
    for (auto _ : state) {
        const auto source = OpenMp3(file, kernels);
        while (source->GetPosition() < source->GetLength()) source->Read(block.data(), kBlockFrames);
        if (source->GetLength() < source->GetSampleRate()) state.SkipWithError("not decoded");
    }
}

#ifdef CORVANE_HAS_MPG123
void DecodePeers(benchmark::State& state, const Mp3Material& material) {
    const std::vector<uint8_t> file = ReadMp3(material);
    std::vector<uint8_t> block(size_t{4} * kBlockFrames);
    mpg123_handle* decoder = mpg123_new(nullptr, nullptr);
    mpg123_param(decoder, MPG123_ADD_FLAGS, MPG123_QUIET, 0);
    for (auto _ : state) {
        size_t bytes = 0, done = 0;
        mpg123_open_feed(decoder);
        mpg123_feed(decoder, file.data(), file.size());
        int result = MPG123_NEW_FORMAT;
        while (result == MPG123_NEW_FORMAT || result == MPG123_OK) {
            result = mpg123_read(decoder, block.data(), block.size(), &done);
            bytes += done;
        }
        if (bytes < file.size()) state.SkipWithError("not decoded");
    }
    state.SetLabel(mpg123_current_decoder(decoder));
    mpg123_delete(decoder);
}
#endif

#ifdef CORVANE_HAS_MPG123
constexpr double kAtMost = 1 / 1.3;
const BenchRatio kRatios[] = {
    {"MP3, 44100 Hz stereo, 128 kbit/s / mpg123", "Mp3At44100", "Mp3At44100OfPeer", kAtMost},
    {"MP3, 48000 Hz stereo, 320 kbit/s / mpg123", "Mp3At48000", "Mp3At48000OfPeer", kAtMost},
    {"MP3, speech, 16000 Hz mono / mpg123", "Mp3At16000", "Mp3At16000OfPeer", kAtMost},
};
#endif

const bool kRegistered = [] {
    for (const Mp3Material& material : kMp3Materials) {
        benchmark::RegisterBenchmark(material.ours, DecodeOurs, material, GetMP3Kernels());
        benchmark::RegisterBenchmark(material.plain, DecodeOurs, material, kPlainMP3Kernels);
#ifdef CORVANE_HAS_MPG123
        benchmark::RegisterBenchmark(material.peers, DecodePeers, material);
#endif
    }
    return true;
}();

}  // namespace
