#include <benchmark/benchmark.h>

#ifdef CORVANE_HAS_SOUNDTOUCH
#define ST_NO_EXCEPTION_HANDLING
#include <soundtouch/SoundTouch.h>
#endif

#include <algorithm>
#include <cmath>
#include <vector>

#include "audio/convert/LSpeedSource.h"
#include "audio/convert/WindSource.h"
#include "bench/Ratios.h"

// Playing speeds and winding: the time that ten minutes of synthetic voice take, slow and fast, at 8000 and
// 44100 Hz, against another library for changing the tempo.

namespace {

constexpr int32_t kMinutes = 10;
constexpr double kTwoPi = 6.283185307179586;

// Repeats the same second of a voice-like sound for ten minutes.
class VoiceSource final : public LSoundSourceBase {
public:
    explicit VoiceSource(int32_t rate)
        : LSoundSourceBase(rate, 1, kFullScale16), m_second(static_cast<size_t>(rate)) {
        for (size_t i = 0; i < m_second.size(); ++i) {
            const double t = kTwoPi * static_cast<double>(i) / rate;
            const double voice = std::sin(110 * t) + 0.5 * std::sin(330 * t) + 0.3 * std::sin(880 * t);
            m_second[i] = static_cast<int32_t>(0x20000 * std::pow(std::sin(2 * t), 2.0) * voice);
        }
    }
    void Read(int32_t* samples, int32_t frames) override {
        while (frames > 0) {
            const int32_t at = m_position % GetSampleRate(), count = std::min(frames, GetSampleRate() - at);
            samples = std::copy_n(m_second.data() + at, count, samples);
            m_position += count;
            frames -= count;
        }
    }
    int32_t GetPosition() const override { return m_position; }
    int32_t GetLength() const override { return kMinutes * 60 * GetSampleRate(); }
    void Seek(int32_t frame) override { m_position = frame; }

private:
    std::vector<int32_t> m_second;
    int32_t m_position = 0;
};

void Drain(const LSoundSource& source) {
    std::vector<int32_t> block(kBlockFrames);
    while (source->GetPosition() < source->GetLength()) source->Read(block.data(), 1024);
    benchmark::ClobberMemory();
}

void AtSpeed(benchmark::State& state, int32_t rate, int32_t percent) {
    for (auto _ : state) Drain(LSpeedSource::OpenSource(LSoundSource::Make<VoiceSource>(rate), percent));
}

// Ten minutes of sound each. The goal is a hundredth of the time for which they are heard at 0.7 of their
// speed.
const BenchTime kShareOfPlayer{"ten minutes at speed 0.7", "Slow8000", 600'000 / 0.7 / 100};
BENCHMARK_CAPTURE(AtSpeed, slow8000, 8000, 70)->Name("Slow8000")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(AtSpeed, fast8000, 8000, 150)->Name("Fast8000")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(AtSpeed, slow44100, 44100, 70)->Name("Slow44100")->Unit(benchmark::kMillisecond);

void Wind(benchmark::State& state) {
    for (auto _ : state) {
        LSoundSource source = LSoundSource::Make<VoiceSource>(8000);
        source->Seek(source->GetLength());
        Drain(LSoundSource::Make<WindSource>(source, -1.5, -8.0, 6000));
    }
}
const BenchTime kWindTime{"ten minutes wound back", "WindBack"};
BENCHMARK(Wind)->Name("WindBack")->Unit(benchmark::kMillisecond);

#ifdef CORVANE_HAS_SOUNDTOUCH
const BenchRatio kRatios[] = {
    {"speed 0.7 at 8000 Hz / soundtouch", "Slow8000", "Slow8000OfSoundTouch", 2.0},
    {"speed 1.5 at 8000 Hz / soundtouch", "Fast8000", "Fast8000OfSoundTouch", 1.0},
    {"speed 0.7 at 44100 Hz / soundtouch", "Slow44100", "Slow44100OfSoundTouch", 1.0},
};

// With its quick search, the library's setting for low processor load.
void AtSpeedOfSoundTouch(benchmark::State& state, int32_t rate, int32_t percent) {
    std::vector<int32_t> block(1024);
    std::vector<soundtouch::SAMPLETYPE> in(block.size()), out(kBlockFrames);
    for (auto _ : state) {
        VoiceSource source(rate);
        soundtouch::SoundTouch stretch;
        stretch.setSampleRate(static_cast<unsigned>(rate));
        stretch.setChannels(1);
        stretch.setTempo(percent / 100.0);
        stretch.setSetting(SETTING_USE_QUICKSEEK, 1);
        while (source.GetPosition() < source.GetLength()) {
            source.Read(block.data(), 1024);
            std::transform(block.begin(), block.end(), in.begin(),
                           [](int32_t v) { return static_cast<soundtouch::SAMPLETYPE>(v); });
            stretch.putSamples(in.data(), 1024);
            while (stretch.receiveSamples(out.data(), kBlockFrames) != 0) {
            }
        }
        benchmark::ClobberMemory();
    }
}
BENCHMARK_CAPTURE(AtSpeedOfSoundTouch, slow8000, 8000, 70)
    ->Name("Slow8000OfSoundTouch")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(AtSpeedOfSoundTouch, fast8000, 8000, 150)
    ->Name("Fast8000OfSoundTouch")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(AtSpeedOfSoundTouch, slow44100, 44100, 70)
    ->Name("Slow44100OfSoundTouch")
    ->Unit(benchmark::kMillisecond);
#endif

}  // namespace
