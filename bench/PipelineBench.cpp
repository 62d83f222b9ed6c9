#include <benchmark/benchmark.h>

#ifdef CORVANE_HAS_SNDFILE
#include <sndfile.h>
#endif

#include <algorithm>
#include <memory>
#include <vector>

#include "audio/convert/LPRSourceToSink.h"
#include "audio/convert/LSRCPeakLimit.h"
#include "audio/stream/LKernels.h"
#include "audio/wave/LWaveFile.h"
#include "audio/wave/LWaveHeader.h"
#include "base/LFile.h"
#include "bench/Ratios.h"
#include "bench/Silent.h"

namespace {

constexpr int32_t kRate = 8000;
constexpr int32_t kHourFrames = 3600 * kRate;

// --- Fixtures ------------------------------------------------------------------------------------------

// Pseudo-random noise; shift gives its level. With noise the processor cannot predict decisions that depend
// on single samples.
std::vector<int32_t> Noise(size_t count, int shift) {
    std::vector<int32_t> samples(count);
    uint32_t state = 1;
    for (int32_t& v : samples) {
        state = state * 1664525u + 1013904223u;
        v = static_cast<int32_t>(state) >> shift;
    }
    return samples;
}

constexpr int kAtMost16Bits = 13;  // shift for amplitudes up to 2^18, within 16 bits
constexpr int kTwiceTooLoud = 11;

class TemporaryFile {
public:
    TemporaryFile() : m_path(LFile::MakeTemporary("cvb")) {}
    ~TemporaryFile() { LFile::Delete(m_path); }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    const LPath& Path() const { return m_path; }

private:
    LPath m_path;
};

// An hour of noise, mono.
class HourFile {
public:
    explicit HourFile(int bits) {
        const LSoundSink sink = LWaveFile::OpenSinkPCM(Path(), bits, 1, kRate);
        const std::vector<int32_t> noise = Noise(kBlockFrames, kAtMost16Bits);
        for (int32_t left = kHourFrames; left > 0; left -= kBlockFrames)
            sink->Write(noise.data(), std::min(left, kBlockFrames));
    }
    const LPath& Path() const { return m_file.Path(); }

private:
    TemporaryFile m_file;
};

const LPath& Hour16() {
    static const HourFile file(16);
    return file.Path();
}

const LPath& Hour8() {
    static const HourFile file(8);
    return file.Path();
}

// Four hours of silence.
class FourHourFile {
public:
    FourHourFile() {
        constexpr int64_t kBytes = int64_t{4} * kHourFrames * 2;
        LFile file(m_file.Path(), LFile::Open::CreateNew);
        const LWaveHeader head = WavePcmHeader(2, 1, kRate, static_cast<uint32_t>(kBytes));
        if (file.WriteAll(head) && file.Seek(kWaveHeaderBytes + kBytes)) file.SetEnd();
    }
    const LPath& Path() const { return m_file.Path(); }

private:
    TemporaryFile m_file;
};

// Delivers the same samples again and again, and without end.
class LoopSource final : public LSoundSourceBase {
public:
    explicit LoopSource(const std::vector<int32_t>& samples)
        : LSoundSourceBase(kRate, 1, INT32_MAX), m_samples(samples) {}
    void Read(int32_t* samples, int32_t frames) override {
        for (size_t left = static_cast<size_t>(frames); left > 0;) {
            const size_t count = std::min(left, m_samples.size() - m_place);
            samples = std::copy_n(m_samples.data() + m_place, count, samples);
            m_place += count;
            if (m_place == m_samples.size()) m_place = 0;
            left -= count;
        }
    }
    int32_t GetPosition() const override { return 0; }
    int32_t GetLength() const override { return INT32_MAX; }
    void Seek(int32_t) override {}

private:
    const std::vector<int32_t>& m_samples;
    size_t m_place = 0;
};

// --- The limiter, against a bare scan for the peak -------------------------------------------------------

// Both take their sound from the same source, so its own work lengthens both times alike.
constexpr char kPeakScanBench[] = "PeakScan";
constexpr char kLimitQuietBench[] = "LimiterAtUnity";
constexpr char kLimitLoudBench[] = "LimiterAtWork";
const BenchRatio kLimiterRatios[] = {
    {"limiter, gain 1 / peak scan", kLimitQuietBench, kPeakScanBench, 2.0},
    {"limiter, limiting / peak scan", kLimitLoudBench, kPeakScanBench},
};

void PeakScan(benchmark::State& state) {
    const std::vector<int32_t> samples = Noise(kBlockFrames, kAtMost16Bits);
    const LSoundSource source = LSoundSource::Make<LoopSource>(samples);
    std::vector<int32_t> block(kBlockFrames);
    for (auto _ : state) {
        source->Read(block.data(), kBlockFrames);
        benchmark::DoNotOptimize(Kernels().peak(block.data(), block.size()));
    }
}
BENCHMARK(PeakScan)->Name(kPeakScanBench);

void Limit(benchmark::State& state, int loudness) {
    const std::vector<int32_t> samples = Noise(kBlockFrames, loudness);
    const LSoundSource source = LSRCPeakLimit::OpenSource(LSoundSource::Make<LoopSource>(samples));
    std::vector<int32_t> block(kBlockFrames);
    for (auto _ : state) {
        source->Read(block.data(), kBlockFrames);
        benchmark::ClobberMemory();
    }
}
BENCHMARK_CAPTURE(Limit, quiet, kAtMost16Bits)->Name(kLimitQuietBench);
BENCHMARK_CAPTURE(Limit, loud, kTwiceTooLoud)->Name(kLimitLoudBench);

// --- The loops for any processor and for SSE2 ------------------------------------------------------------

// Calls one loop over a block; the buffers are large enough for every sample format.
using Loop = void (*)(const LKernels& kernels, const int32_t* in, int32_t* out);

void RunLoop(benchmark::State& state, const LKernels& kernels, Loop loop) {
    const std::vector<int32_t> in = Noise(kBlockFrames, kAtMost16Bits);
    std::vector<int32_t> out(kBlockFrames);
    for (auto _ : state) {
        loop(kernels, in.data(), out.data());
        benchmark::ClobberMemory();
    }
}

const uint8_t* AsPcm(const int32_t* samples) {
    return reinterpret_cast<const uint8_t*>(samples);
}

uint8_t* AsPcm(int32_t* samples) {
    return reinterpret_cast<uint8_t*>(samples);
}

struct LoopBench {
    const char* label;
    const char* fast;
    const char* plain;
    Loop loop;
};
const LoopBench kLoopBenches[] = {
    {"peak, SSE2 / plain", "PeakSse2", "PeakPlain",
     [](const LKernels& kernels, const int32_t* in, int32_t* out) {
         *out = static_cast<int32_t>(kernels.peak(in, kBlockFrames));
     }},
    {"8 bits in, SSE2 / plain", "FromPcm8Sse2", "FromPcm8Plain",
     [](const LKernels& kernels, const int32_t* in, int32_t* out) {
         kernels.fromPcm8(AsPcm(in), out, kBlockFrames);
     }},
    {"16 bits in, SSE2 / plain", "FromPcm16Sse2", "FromPcm16Plain",
     [](const LKernels& kernels, const int32_t* in, int32_t* out) {
         kernels.fromPcm16(AsPcm(in), out, kBlockFrames);
     }},
    {"8 bits out, SSE2 / plain", "ToPcm8Sse2", "ToPcm8Plain",
     [](const LKernels& kernels, const int32_t* in, int32_t* out) {
         kernels.toPcm8(in, AsPcm(out), kBlockFrames);
     }},
    {"16 bits out, SSE2 / plain", "ToPcm16Sse2", "ToPcm16Plain",
     [](const LKernels& kernels, const int32_t* in, int32_t* out) {
         kernels.toPcm16(in, AsPcm(out), kBlockFrames);
     }},
    {"gain ramp, SSE2 / plain", "RampSse2", "RampPlain",
     [](const LKernels& kernels, const int32_t* in, int32_t* out) {
         kernels.ramp({kUnityGain, -100, -kFullScale16}, in, out, kBlockFrames, 1);
     }},
};

const bool kLoopsRegistered = [] {
    for (const LoopBench& bench : kLoopBenches) {
        if (&Kernels() == &kPlainKernels) break;
        benchmark::RegisterBenchmark(bench.fast, RunLoop, kSse2Kernels, bench.loop);
        benchmark::RegisterBenchmark(bench.plain, RunLoop, kPlainKernels, bench.loop);
        BenchFigures().push_back({bench.label, bench.fast, bench.plain, 0.0});
    }
    return true;
}();

// --- WAV files -------------------------------------------------------------------------------------------

constexpr char kReadBench[] = "ReadHour16";
constexpr char kReadIntBench[] = "ReadHour16IntsOfSndfile";
constexpr char kReadShortBench[] = "ReadHour16ShortsOfSndfile";
constexpr char kCopyBench[] = "CopyHour8To16";
constexpr char kCopyPeerBench[] = "CopyHour8To16OfSndfile";
constexpr char kOpenBench[] = "OpenAndSeekInFourHours";
// Reading into 32-bit samples is the fair comparison, since both do the same work. Into 16 bits the peer
// copies the bytes of the file unchanged.
const BenchRatio kFileRatios[] = {
    {"WAV reading, 32-bit samples / libsndfile", kReadBench, kReadIntBench, 0.77},
    {"WAV reading, 32-bit samples / its 16-bit samples", kReadBench, kReadShortBench},
    {"WAV copy, 8 to 16 bits / libsndfile", kCopyBench, kCopyPeerBench, 1.0},
};
const BenchTime kOpenTime("WAV of four hours, open and seek", kOpenBench, 5.0);

void Once(benchmark::internal::Benchmark* bench) {
    bench->UseRealTime()->Unit(benchmark::kMillisecond)->Iterations(1);
}

void Read(benchmark::State& state) {
    const LPath& path = Hour16();
    std::vector<int32_t> block(kBlockFrames);
    for (auto _ : state) {
        const LSoundSource source = LWaveFile::OpenSource(path);
        while (source->GetPosition() < source->GetLength()) source->Read(block.data(), kBlockFrames);
        if (source->GetLength() != kHourFrames) state.SkipWithError("not the whole hour");
    }
}
BENCHMARK(Read)->Name(kReadBench)->Apply(Once);

void Copy(benchmark::State& state) {
    const LPath& path = Hour8();
    const TemporaryFile target;
    Silent context;
    for (auto _ : state) {
        LPRSourceToSink copy(LWaveFile::OpenSource(path),
                             LWaveFile::OpenSinkPCM(target.Path(), 16, 1, kRate));
        if (copy.Process(context) != ProcessResult::Done) state.SkipWithError("copy failed");
    }
}
BENCHMARK(Copy)->Name(kCopyBench)->Apply(Once);

void OpenAndSeek(benchmark::State& state) {
    static const FourHourFile file;
    std::vector<int32_t> block(kBlockFrames);
    int32_t place = 0;
    for (auto _ : state) {
        const LSoundSource source = LWaveFile::OpenSource(file.Path());
        place = (place + 7 * kRate * 600) % source->GetLength();
        source->Seek(place);
        source->Read(block.data(), kRate / 10);
        if (source->IsError() || source->GetPosition() != place + kRate / 10)
            state.SkipWithError("cannot be sought");
    }
}
BENCHMARK(OpenAndSeek)->Name(kOpenBench)->Unit(benchmark::kMicrosecond);

#ifdef CORVANE_HAS_SNDFILE
struct CloseSndfile {
    void operator()(SNDFILE* file) const { sf_close(file); }
};
using Sndfile = std::unique_ptr<SNDFILE, CloseSndfile>;

Sndfile OpenSndfile(const LPath& path, int mode, SF_INFO info = {}) {
    return Sndfile(sf_open(path.c_str(), mode, &info));
}

template <class Sample>
void ReadOfSndfile(benchmark::State& state, sf_count_t (*readFrames)(SNDFILE*, Sample*, sf_count_t)) {
    const LPath& path = Hour16();
    std::vector<Sample> block(kBlockFrames);
    for (auto _ : state) {
        const Sndfile file = OpenSndfile(path, SFM_READ);
        sf_count_t total = 0;
        while (const sf_count_t count = readFrames(file.get(), block.data(), kBlockFrames)) total += count;
        if (total != kHourFrames) state.SkipWithError("not the whole hour");
    }
}
BENCHMARK_CAPTURE(ReadOfSndfile, ints, sf_readf_int)->Name(kReadIntBench)->Apply(Once);
BENCHMARK_CAPTURE(ReadOfSndfile, shorts, sf_readf_short)->Name(kReadShortBench)->Apply(Once);

void CopyOfSndfile(benchmark::State& state) {
    const LPath& path = Hour8();
    const TemporaryFile target;
    SF_INFO info = {};
    info.samplerate = kRate;
    info.channels = 1;
    info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
    std::vector<int16_t> block(kBlockFrames);
    for (auto _ : state) {
        const Sndfile in = OpenSndfile(path, SFM_READ), out = OpenSndfile(target.Path(), SFM_WRITE, info);
        sf_count_t total = 0;
        while (const sf_count_t count = sf_readf_short(in.get(), block.data(), kBlockFrames))
            total += sf_writef_short(out.get(), block.data(), count);
        if (total != kHourFrames) state.SkipWithError("not the whole hour");
    }
}
BENCHMARK(CopyOfSndfile)->Name(kCopyPeerBench)->Apply(Once);
#endif

}  // namespace
