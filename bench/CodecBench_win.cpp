#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <map>
#include <memory>
#include <vector>

#include "audio/wave/LAcmRecord.h"
#include "audio/wave/LSNKACMFile.h"
#include "audio/wave/LSRCACMWave.h"
#include "base/LMemoryFile.h"
#include "bench/BareCodec_win.h"
#include "bench/Ratios.h"
#include "tests/unit/BorrowedStream.h"

// Compressing and decompressing an hour through our sink and source, against a bare loop around the
// platform's codec with the same blocks. Both read and write memory, so that the disk does not blur the
// difference.

namespace {

constexpr int32_t kRate = 8000;
constexpr int32_t kHourFrames = 3600 * kRate;

// --- Formats and sound -----------------------------------------------------------------------------------

// Wave format records (LWaveFileFormat) of the codecs: IMA ADPCM, GSM 6.10 and mu-law, 8000 Hz, mono.
constexpr uint8_t kImaRecord[] = {0x11, 0, 1, 0, 0x40, 0x1F, 0, 0, 0xD7, 0x0F,
                                  0,    0, 0, 1, 4,    0,    2, 0, 0xF9, 1};
constexpr uint8_t kGsmRecord[] = {0x31, 0, 1, 0, 0x40, 0x1F, 0, 0, 0x59, 6, 0, 0, 65, 0, 0, 0, 2, 0, 0x40, 1};
constexpr uint8_t kLawRecord[] = {7, 0, 1, 0, 0x40, 0x1F, 0, 0, 0x40, 0x1F, 0, 0, 1, 0, 8, 0, 0, 0};

// A block of a voice-like tone, repeated for the whole hour.
const std::vector<int16_t>& Block16() {
    static const std::vector<int16_t> block = [] {
        std::vector<int16_t> samples(kBlockFrames);
        for (size_t i = 0; i < samples.size(); ++i) {
            const double t = static_cast<double>(i) / kRate;
            samples[i] =
                static_cast<int16_t>(9000 * std::sin(880 * t) * std::sin(20 * t) + 3000 * std::sin(5000 * t));
        }
        return samples;
    }();
    return block;
}

std::vector<int32_t> Block20() {
    std::vector<int32_t> samples(kBlockFrames);
    std::ranges::transform(Block16(), samples.begin(), FromPcm16);
    return samples;
}

void Compress(LMemoryFile& file, const LWaveFileFormat& format, const std::vector<int32_t>& block) {
    LSNKACMFile sink(format, Borrow(file));
    for (int32_t left = kHourFrames; left > 0; left -= kBlockFrames)
        sink.Write(block.data(), std::min(left, kBlockFrames));
}

// A compressed file of one hour, made once for each format.
LMemoryFile& Hour(const LWaveFileFormat& format) {
    static std::map<uint16_t, LMemoryFile> hours;
    LMemoryFile& file = hours[format.Tag()];
    if (file.Size() == 0) Compress(file, format, Block20());
    return file;
}

// --- The benches -----------------------------------------------------------------------------------------

void CompressOurs(benchmark::State& state, const LWaveFileFormat& format) {
    const std::vector<int32_t> block = Block20();
    for (auto _ : state) {
        LMemoryFile file;
        Compress(file, format, block);
        if (file.Size() < kHourFrames / 10) state.SkipWithError("no codec");
    }
}

void CompressBare(benchmark::State& state, const LWaveFileFormat& format) {
    const std::vector<int16_t>& block = Block16();
    for (auto _ : state) {
        LMemoryFile file;
        BareCodec codec(LAcmPcm(format), format);
        size_t place = 0;
        for (int64_t left = kHourFrames; left > 0;) {
            const auto room = codec.Free();
            const size_t count = std::min({room.size() / 2, block.size() - place, static_cast<size_t>(left)});
            std::memcpy(room.data(), &block[place], 2 * count);
            place = (place + count) % block.size();
            left -= static_cast<int64_t>(count);
            file.WriteAll(codec.Convert(2 * count));
        }
        if (file.Size() < kHourFrames / 10) state.SkipWithError("no codec");
    }
}

void DecompressOurs(benchmark::State& state, const LWaveFileFormat& format) {
    LMemoryFile& file = Hour(format);
    std::vector<int32_t> block(kBlockFrames);
    LWaveInfo info;
    LWaveFile::ReadInfo(file, info);
    for (auto _ : state) {
        file.Seek(0);
        LSRCACMWave source(Borrow(file), info);
        while (source.GetPosition() < source.GetLength()) source.Read(block.data(), kBlockFrames);
        if (source.GetLength() < kHourFrames) state.SkipWithError("not the whole hour");
    }
}

// Copies the samples out, as every reader does, but in the codec's own format.
void DecompressBare(benchmark::State& state, const LWaveFileFormat& format) {
    LMemoryFile& file = Hour(format);
    std::vector<uint8_t> block(size_t{kBlockFrames} * 2);
    LWaveInfo info;
    LWaveFile::ReadInfo(file, info);
    for (auto _ : state) {
        file.Seek(info.dataStart);
        BareCodec codec(format, LAcmPcm(format));
        int64_t frames = 0;
        for (size_t got = 1; got > 0;) {
            got = file.Read(codec.Free());
            const auto pcm = codec.Convert(got);
            std::memcpy(block.data(), pcm.data(), pcm.size());
            benchmark::ClobberMemory();
            frames += static_cast<int64_t>(pcm.size() / 2);
        }
        if (frames < kHourFrames - 1000) state.SkipWithError("not the whole hour");
    }
}

void SeekOurs(benchmark::State& state, const LWaveFileFormat& format) {
    LMemoryFile& file = Hour(format);
    std::vector<int32_t> block(kBlockFrames);
    LWaveInfo info;
    LWaveFile::ReadInfo(file, info);
    int32_t place = 0;
    for (auto _ : state) {
        LSRCACMWave source(Borrow(file), info);
        place = (place + 7 * kRate * 600 + 1) % kHourFrames;
        source.Seek(place);
        source.Read(block.data(), kRate / 10);
    }
}

struct CodecBench {
    const char* label;
    const char* ours;
    const char* bare;
    void (*runOurs)(benchmark::State&, const LWaveFileFormat&);
    void (*runBare)(benchmark::State&, const LWaveFileFormat&);  // null: only our time is measured
    std::span<const uint8_t> record;
};
// The fast codecs, since with them our own work has the largest share; and seeking in GSM 6.10, where it
// takes longest, since decoding has to start some way before the place.
constexpr double kAtMost = 1 / 0.95;
constexpr double kSeekAtMostMs = 5.0;
const CodecBench kCodecs[] = {
    {"IMA ADPCM, compressing / bare codec", "ImaCompress", "ImaCompressBare", CompressOurs, CompressBare,
     kImaRecord},
    {"IMA ADPCM, decompressing / bare codec", "ImaDecompress", "ImaDecompressBare", DecompressOurs,
     DecompressBare, kImaRecord},
    {"mu-law, compressing / bare codec", "LawCompress", "LawCompressBare", CompressOurs, CompressBare,
     kLawRecord},
    {"mu-law, decompressing / bare codec", "LawDecompress", "LawDecompressBare", DecompressOurs,
     DecompressBare, kLawRecord},
    {"GSM 6.10, open and seek", "GsmSeek", nullptr, SeekOurs, nullptr, kGsmRecord},
};

const bool kRegistered = [] {
    for (const CodecBench& codec : kCodecs) {
        const LWaveFileFormat format(codec.record);
        auto* ours = benchmark::RegisterBenchmark(codec.ours, codec.runOurs, format);
        BenchFigures().push_back({codec.label, codec.ours, codec.bare, codec.bare ? kAtMost : kSeekAtMostMs});
        if (!codec.bare) continue;
        auto* bare = benchmark::RegisterBenchmark(codec.bare, codec.runBare, format);
        for (auto* bench : {ours, bare}) bench->UseRealTime()->Unit(benchmark::kMillisecond)->Iterations(1);
    }
    return true;
}();

}  // namespace
