#include <benchmark/benchmark.h>

#ifdef CORVANE_HAS_SOXR
#include <soxr.h>
#endif
#ifdef CORVANE_HAS_SAMPLERATE
#include <samplerate.h>
#endif
#ifdef CORVANE_HAS_SPEEXDSP
#include <speex/speex_resampler.h>
#endif

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>
#include <numbers>
#include <string>
#include <vector>

#include "audio/convert/LSRCConvertRate.h"
#include "bench/Ratios.h"

// Rate conversion of a minute of sound, block by block. Each library gets samples of its preferred type, ours
// those of the pipeline. The quality of our conversion is measured in the same run.

namespace {

struct Rates {
    int32_t in, out;
};
constexpr Rates kDown{44100, 8000};
constexpr Rates kUp{8000, 44100};
constexpr int32_t kSeconds = 60;

#define CORVANE_RATE_BENCHES(direction, label, atMost)                                   \
    constexpr char k##direction##Ours[] = "Rate" label;                                  \
    constexpr char k##direction##Plain[] = "Rate" label "Plain";                         \
    constexpr char k##direction##Mmx[] = "Rate" label "Mmx";                             \
    constexpr char k##direction##Sse2[] = "Rate" label "Sse2";                           \
    constexpr char k##direction##Soxr[] = "Rate" label "OfSoxr";                         \
    constexpr char k##direction##Medium[] = "Rate" label "OfSamplerateMedium";           \
    constexpr char k##direction##Fastest[] = "Rate" label "OfSamplerateFastest";         \
    constexpr char k##direction##Speex[] = "Rate" label "OfSpeexdsp";                    \
    const BenchRatio k##direction##Ratios[] = {                                          \
        {label " / soxr, high quality", k##direction##Ours, k##direction##Soxr, atMost}, \
        {label " / libsamplerate, medium", k##direction##Ours, k##direction##Medium},    \
        {label " / libsamplerate, fastest", k##direction##Ours, k##direction##Fastest},  \
        {label " / speexdsp, quality 5", k##direction##Ours, k##direction##Speex},       \
        {label ", MMX / SSE2 loops", k##direction##Mmx, k##direction##Sse2, 2.5},        \
        {label ", plain / SSE2 loops", k##direction##Plain, k##direction##Sse2},         \
    };

CORVANE_RATE_BENCHES(Down, "44100To8000", 0.5)
CORVANE_RATE_BENCHES(Up, "8000To44100", 1.0)

// A voiced sound with overtones up to half the rate, at a quarter of full scale.
double Voice(int32_t frame, int32_t rate) {
    const double t = static_cast<double>(frame) / rate;
    double sum = 0.0;
    for (double hz : {140.0, 420.0, 980.0, 2240.0, 3360.0}) sum += std::sin(2 * std::numbers::pi * hz * t);
    return 0.05 * sum;
}

// The input signal, made once for each sample type and rate.
template <class T>
const std::vector<T>& Material(int32_t rate, double fullScale) {
    static std::map<int32_t, std::vector<T>> made;
    std::vector<T>& samples = made[rate];
    if (samples.empty()) {
        samples.resize(static_cast<size_t>(rate) * kSeconds);
        for (size_t i = 0; i < samples.size(); ++i)
            samples[i] = static_cast<T>(fullScale * Voice(static_cast<int32_t>(i), rate));
    }
    return samples;
}

class ArraySource final : public LSoundSourceBase {
public:
    ArraySource(int32_t rate, const std::vector<int32_t>& samples)
        : LSoundSourceBase(rate, 1, kFullScale16), m_samples(samples) {}
    void Read(int32_t* samples, int32_t frames) override {
        const int32_t present = std::clamp(GetLength() - m_position, 0, frames);
        std::copy_n(m_samples.data() + m_position, present, samples);
        std::fill_n(samples + present, frames - present, 0);
        m_position += frames;
    }
    int32_t GetPosition() const override { return m_position; }
    int32_t GetLength() const override { return static_cast<int32_t>(m_samples.size()); }
    void Seek(int32_t frame) override { m_position = std::clamp(frame, 0, GetLength()); }

private:
    const std::vector<int32_t>& m_samples;
    int32_t m_position = 0;
};

// One iteration for each run: the shorter a run, the greater its chance not to be disturbed.
void OneByOne(benchmark::internal::Benchmark* bench) {
    bench->Iterations(1);
}

// For peers that take a large multiple of our time.
[[maybe_unused]] void Seldom(benchmark::internal::Benchmark* bench) {
    bench->Iterations(1)->Repetitions(3);
}

void Count(benchmark::State& state, const Rates& rates) {
    state.SetItemsProcessed(state.iterations() * int64_t{rates.out} * kSeconds);
}

void Ours(benchmark::State& state, const Rates& rates) {
    const std::vector<int32_t>& in = Material<int32_t>(rates.in, 0x80000);
    std::vector<int32_t> block(kBlockFrames);
    for (auto _ : state) {
        const LSoundSource source =
            LSRCConvertRate::OpenSource(LSoundSource::Make<ArraySource>(rates.in, in), rates.out);
        while (source->GetPosition() < source->GetLength()) source->Read(block.data(), kBlockFrames);
        benchmark::DoNotOptimize(block.data());
    }
    Count(state, rates);
}
BENCHMARK_CAPTURE(Ours, down, kDown)->Name(kDownOurs)->Apply(OneByOne);
BENCHMARK_CAPTURE(Ours, up, kUp)->Name(kUpOurs)->Apply(OneByOne);

// The two inner loops of a conversion (narrowing, interpolating) by themselves.
void Loops(benchmark::State& state, const Rates& rates, const LKernels& kernels) {
    const std::vector<int32_t>& in = Material<int32_t>(rates.in, 0x80000);
    const LSincFilter filter(rates.in, rates.out, 63);
    std::vector<int16_t> history(in.size());
    std::vector<int32_t> block(kBlockFrames);
    const size_t frames = static_cast<size_t>(filter.ToOutput(static_cast<int32_t>(in.size()) - 64));
    for (auto _ : state) {
        for (size_t i = 0; i < in.size(); i += block.size())
            kernels.narrow(in.data() + i, history.data() + i, std::min(block.size(), in.size() - i));
        for (size_t i = 0; i < frames; i += block.size()) {
            const int32_t frame = static_cast<int32_t>(i);
            kernels.interpolate(filter.Rows(), static_cast<uint32_t>(filter.PhaseOf(frame)),
                                history.data() + filter.ToInput(frame), block.data(),
                                std::min(block.size(), frames - i), 1);
        }
        benchmark::DoNotOptimize(block.data());
    }
    Count(state, rates);
}

void Sse2Loops(benchmark::State& state, const Rates& rates) {
    if (&Kernels() != &kSse2Kernels)
        state.SkipWithError("no SSE2 here");
    else
        Loops(state, rates, kSse2Kernels);
}
BENCHMARK_CAPTURE(Loops, down, kDown, kPlainKernels)->Name(kDownPlain)->Apply(OneByOne);
BENCHMARK_CAPTURE(Loops, up, kUp, kPlainKernels)->Name(kUpPlain)->Apply(OneByOne);
BENCHMARK_CAPTURE(Loops, down, kDown, kMmxKernels)->Name(kDownMmx)->Apply(OneByOne);
BENCHMARK_CAPTURE(Loops, up, kUp, kMmxKernels)->Name(kUpMmx)->Apply(OneByOne);
BENCHMARK_CAPTURE(Sse2Loops, down, kDown)->Name(kDownSse2)->Apply(OneByOne);
BENCHMARK_CAPTURE(Sse2Loops, up, kUp)->Name(kUpSse2)->Apply(OneByOne);

// --- Peers ---------------------------------------------------------------------------------------------

constexpr size_t kRoom = 8 * static_cast<size_t>(kBlockFrames);

#ifdef CORVANE_HAS_SOXR
void Soxr(benchmark::State& state, const Rates& rates) {
    const std::vector<int16_t>& in = Material<int16_t>(rates.in, 0x8000);
    std::vector<int16_t> out(kRoom);
    const soxr_io_spec_t samples = soxr_io_spec(SOXR_INT16_I, SOXR_INT16_I);
    const soxr_quality_spec_t quality = soxr_quality_spec(SOXR_HQ, 0);
    for (auto _ : state) {
        const soxr_t soxr = soxr_create(rates.in, rates.out, 1, nullptr, &samples, &quality, nullptr);
        size_t used = 0, made = 1;
        while (made > 0) {
            const size_t given = std::min<size_t>(kBlockFrames, in.size() - used);
            size_t taken = 0;
            soxr_process(soxr, given > 0 ? in.data() + used : nullptr, given, &taken, out.data(), kRoom,
                         &made);
            used += taken;
            if (taken > 0) made = 1;
        }
        soxr_delete(soxr);
        benchmark::DoNotOptimize(out.data());
    }
    Count(state, rates);
}
BENCHMARK_CAPTURE(Soxr, down, kDown)->Name(kDownSoxr)->Apply(OneByOne);
BENCHMARK_CAPTURE(Soxr, up, kUp)->Name(kUpSoxr)->Apply(OneByOne);
#endif

#ifdef CORVANE_HAS_SAMPLERATE
void Samplerate(benchmark::State& state, const Rates& rates, int quality) {
    const std::vector<float>& in = Material<float>(rates.in, 1.0);
    std::vector<float> out(kRoom);
    for (auto _ : state) {
        int error = 0;
        SRC_STATE* const converter = src_new(quality, 1, &error);
        SRC_DATA data{};
        data.src_ratio = static_cast<double>(rates.out) / rates.in;
        data.data_out = out.data();
        data.output_frames = static_cast<long>(kRoom);
        for (size_t used = 0; used < in.size(); used += static_cast<size_t>(data.input_frames_used)) {
            data.data_in = in.data() + used;
            data.input_frames = static_cast<long>(std::min<size_t>(kBlockFrames, in.size() - used));
            src_process(converter, &data);
        }
        src_delete(converter);
        benchmark::DoNotOptimize(out.data());
    }
    Count(state, rates);
}
BENCHMARK_CAPTURE(Samplerate, medium down, kDown, SRC_SINC_MEDIUM_QUALITY)->Name(kDownMedium)->Apply(Seldom);
BENCHMARK_CAPTURE(Samplerate, medium up, kUp, SRC_SINC_MEDIUM_QUALITY)->Name(kUpMedium)->Apply(Seldom);
BENCHMARK_CAPTURE(Samplerate, fastest down, kDown, SRC_SINC_FASTEST)->Name(kDownFastest)->Apply(Seldom);
BENCHMARK_CAPTURE(Samplerate, fastest up, kUp, SRC_SINC_FASTEST)->Name(kUpFastest)->Apply(Seldom);
#endif

#ifdef CORVANE_HAS_SPEEXDSP
void Speexdsp(benchmark::State& state, const Rates& rates) {
    const std::vector<int16_t>& in = Material<int16_t>(rates.in, 0x8000);
    std::vector<int16_t> out(kRoom);
    for (auto _ : state) {
        int error = 0;
        SpeexResamplerState* const converter = speex_resampler_init(
            1, static_cast<spx_uint32_t>(rates.in), static_cast<spx_uint32_t>(rates.out), 5, &error);
        for (size_t used = 0; used < in.size();) {
            spx_uint32_t taken = static_cast<spx_uint32_t>(std::min<size_t>(kBlockFrames, in.size() - used));
            spx_uint32_t made = static_cast<spx_uint32_t>(kRoom);
            speex_resampler_process_int(converter, 0, in.data() + used, &taken, out.data(), &made);
            used += taken;
        }
        speex_resampler_destroy(converter);
        benchmark::DoNotOptimize(out.data());
    }
    Count(state, rates);
}
BENCHMARK_CAPTURE(Speexdsp, down, kDown)->Name(kDownSpeex)->Apply(Seldom);
BENCHMARK_CAPTURE(Speexdsp, up, kUp)->Name(kUpSpeex)->Apply(Seldom);
#endif

// --- Quality -------------------------------------------------------------------------------------------

// The result of converting a second of a tone at half of full scale. Units: dB.
struct ToneResult {
    double levelDb;  // of the tone, against the input
    double snrDb;    // of the tone against the rest
    double totalDb;  // of everything, against the input
};

ToneResult ConvertTone(const Rates& rates, double hz) {
    constexpr double kAmplitude = 0x40000;
    std::vector<int32_t> in(static_cast<size_t>(rates.in) * 2);
    for (size_t i = 0; i < in.size(); ++i)
        in[i] = 16 * static_cast<int32_t>(std::lround(
                         kAmplitude / 16 *
                         std::sin(2 * std::numbers::pi * hz * static_cast<double>(i) / rates.in + 0.3)));
    const LSoundSource source =
        LSRCConvertRate::OpenSource(LSoundSource::Make<ArraySource>(rates.in, in), rates.out);
    std::vector<int32_t> out(static_cast<size_t>(rates.out));
    source->Seek(rates.out / 2);
    for (int32_t done = 0; done < rates.out; done += kBlockFrames)
        source->Read(out.data() + done, std::min(kBlockFrames, rates.out - done));

    // A least-squares fit of the tone. Over a second of whole periods sine and cosine are orthogonal, so each
    // coefficient is a plain sum.
    double re = 0.0, im = 0.0, power = 0.0;
    for (size_t i = 0; i < out.size(); ++i) {
        const double angle = 2 * std::numbers::pi * hz * static_cast<double>(i) / rates.out, v = out[i];
        re += v * std::cos(angle);
        im += v * std::sin(angle);
        power += v * v;
    }
    const double count = static_cast<double>(out.size());
    const double tone = 2 * (re * re + im * im) / count;
    const auto db = [](double ratio) { return 10 * std::log10(std::max(ratio, 1e-15)); };
    const double full = kAmplitude * kAmplitude / 2 * count;
    return {db(tone / full), db(tone / (power - tone)), db(power / full)};
}

constexpr int kTones[] = {120, 300, 700, 1000, 1600, 2200, 3000};

void Quality(benchmark::State& state, const Rates& rates) {
    for (auto _ : state) {
        double least = 1000.0, sum = 0.0;
        for (int hz : kTones) {
            const double snrDb = ConvertTone(rates, hz).snrDb;
            least = std::min(least, snrDb);
            sum += snrDb;
        }
        state.counters["SNR_mean_dB"] = sum / static_cast<double>(std::size(kTones));
        state.counters["SNR_least_dB"] = least;
        state.counters["1000Hz_dB"] = ConvertTone(rates, 1000).levelDb;
        state.counters["3400Hz_dB"] = ConvertTone(rates, 3400).levelDb;
        double loudest = -1000.0;
        for (int hz = 5000; hz < rates.in / 2; hz += 53)
            loudest = std::max(loudest, ConvertTone(rates, hz).totalDb);
        if (rates.in > rates.out) state.counters["from_5000Hz_dB"] = loudest;
    }
}
BENCHMARK_CAPTURE(Quality, down, kDown)->Name("RateQuality44100To8000")->Iterations(1)->Repetitions(1);
BENCHMARK_CAPTURE(Quality, up, kUp)->Name("RateQuality8000To44100")->Iterations(1)->Repetitions(1);

}  // namespace
