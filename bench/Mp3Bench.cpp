#include "bench/Mp3Material.h"

#include <benchmark/benchmark.h>

#ifdef CORVANE_HAS_MPG123
#include <mpg123.h>
#endif

#include "audio/convert/LPRSourceToSink.h"
#include "audio/wave/LSNKPCMFile.h"
#include "bench/Ratios.h"
#include "bench/Silent.h"
#include "tests/unit/BorrowedStream.h"

// Decoding of short MP3 files from memory, by our two versions of the loops and by the fastest decoder of the
// peer. The peer gives 16-bit samples, which is what it is fastest at; ours are those of the pipeline.

namespace {

void DecodeOurs(benchmark::State& state, const Mp3Material& material, const MP3Kernels& kernels) {
    const std::vector<uint8_t> file = ReadMp3(material);
    std::vector<int32_t> block(size_t{2} * kBlockFrames);
    const auto source = OpenMp3(file, kernels);
    for (auto _ : state) {
        source->Seek(0);
        while (source->GetPosition() < source->GetLength()) source->Read(block.data(), kBlockFrames);
        if (source->GetLength() < source->GetSampleRate()) state.SkipWithError("not decoded");
    }
}

// An hour of stereo music as a dictation: the conversion of an import, into a WAV file in memory.
constexpr char kHourBench[] = "Mp3HourToDictation";
const BenchTime kHourTime{"MP3, an hour of 44100 Hz stereo to 8000 Hz mono", kHourBench, 15000};

void HourToDictation(benchmark::State& state) {
    const std::vector<uint8_t> piece = ReadMp3(kMp3Materials[0]);
    std::vector<uint8_t> hour;
    for (int i = 0; i < 1800; ++i) hour.insert(hour.end(), piece.begin(), piece.end());
    for (auto _ : state) {
        LMemoryFile wave;
        Silent context;
        const LSoundSource source = LSoundSource::Make<LMP3Source>(std::make_unique<LMemoryFile>(hour));
        LPRSourceToSink process(source, LSoundSink::Make<LSNKPCMFile16>(Borrow(wave), 0, uint8_t{1}, 8000));
        if (process.Process(context) != ProcessResult::Done || wave.Size() < int64_t{3600} * 16000)
            state.SkipWithError("not converted");
    }
}
BENCHMARK(HourToDictation)->Name(kHourBench)->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(3);

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
