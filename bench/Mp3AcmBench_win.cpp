#include <benchmark/benchmark.h>

#include "audio/wave/LAcmRecord.h"
#include "base/LBytes.h"
#include "bench/BareCodec_win.h"
#include "bench/Mp3Material.h"
#include "bench/Ratios.h"

// The peer of Mp3Bench.cpp: the platform's own decoder, which the audio compression manager leads to.

namespace {

constexpr double kAtMost = 1 / 2.5;
const BenchRatio kRatios[] = {
    {"MP3, 44100 Hz stereo, 128 kbit/s / the platform's codec", "Mp3At44100", "Mp3At44100OfPeer", kAtMost},
    {"MP3, 48000 Hz stereo, 320 kbit/s / the platform's codec", "Mp3At48000", "Mp3At48000OfPeer", kAtMost},
    {"MP3, speech, 16000 Hz mono / the platform's codec", "Mp3At16000", "Mp3At16000OfPeer", kAtMost},
    {"MP3, 44100 Hz, plain loops / the platform's codec", "Mp3At44100Plain", "Mp3At44100OfPeer", 1.0},
    {"MP3, 48000 Hz, plain loops / the platform's codec", "Mp3At48000Plain", "Mp3At48000OfPeer", 1.0},
    {"MP3, speech, plain loops / the platform's codec", "Mp3At16000Plain", "Mp3At16000OfPeer", 1.0},
};

LWaveFileFormat FormatOf(const MP3Header& header) {
    LByteWriter record;
    record.U16(WAVE_FORMAT_MPEGLAYER3);
    record.U16(header.Channels());
    record.U32(static_cast<uint32_t>(header.sampleRate));
    record.U32(static_cast<uint32_t>(header.bitRate / 8));
    record.U16(1);
    record.U16(0);
    record.U16(MPEGLAYER3_WFX_EXTRA_BYTES);
    record.U16(MPEGLAYER3_ID_MPEG);
    record.U32(MPEGLAYER3_FLAG_PADDING_ISO);
    record.U16(static_cast<uint16_t>(header.FrameBytes()));
    record.U16(1);
    record.U16(0);
    return LWaveFileFormat(record.View());
}

void DecodeBare(benchmark::State& state, const Mp3Material& material) {
    LMemoryFile file{ReadMp3(material)};
    MP3Header header;
    header.ReadHeader(file);
    const LWaveFileFormat format = FormatOf(header);
    int64_t frames = 0;
    for (auto _ : state) {
        file.Seek(0);
        BareCodec codec(format, LAcmPcm(format));
        frames = 0;
        for (size_t got = 1, left = 1; got > 0 || left > 0;) {
            got = file.Read(codec.Free());
            left = codec.Convert(got).size();
            benchmark::ClobberMemory();
            frames += static_cast<int64_t>(left) / (2 * header.Channels());
        }
    }
    if (frames < header.sampleRate * 9 / 10) state.SkipWithError("not decoded");
}

const bool kRegistered = [] {
    for (const Mp3Material& material : kMp3Materials)
        benchmark::RegisterBenchmark(material.peers, DecodeBare, material);
    return true;
}();

}  // namespace
