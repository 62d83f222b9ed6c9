#include <cmath>
#include <numbers>
#include <numeric>
#include <random>

#include "audio/convert/LPRSourceToSink.h"
#include "audio/convert/LRecordSpeed.h"
#include "audio/convert/LSRCConvertRate.h"
#include "audio/convert/LSinkConvertRate.h"
#include "tests/unit/audio/AudioTest.h"

namespace {

struct Rates {
    int32_t in, out;
};
constexpr Rates kRates[] = {{44100, 8000}, {8000, 44100}, {22050, 8000}, {11025, 8000},  {48000, 44100},
                            {16000, 8000}, {8000, 16000}, {8001, 8000},  {192000, 8000}, {8000, 7999}};

Samples Noise(size_t count, int32_t peak, uint32_t seed = 1) {
    std::mt19937 random(seed);
    Samples samples(count);
    for (int32_t& v : samples) v = static_cast<int32_t>(random() % (2u * static_cast<uint32_t>(peak))) - peak;
    return samples;
}

Samples Tone(size_t count, double hz, int32_t rate, double amplitude) {
    Samples samples(count);
    for (size_t i = 0; i < count; ++i)
        samples[i] = static_cast<int32_t>(
            std::lround(amplitude * std::sin(2 * std::numbers::pi * hz * static_cast<double>(i) / rate)));
    return samples;
}

int64_t FloorDiv(int64_t a, int64_t b) {
    return (a - ((a % b) + b) % b) / b;
}

// Output frame n by the rule itself, in numbers that cannot overflow: the taps around n * M / L, in two halves
// that share the two taps in the middle.
int32_t ModelSample(const LSincFilter& filter, const Samples& in, size_t channels, size_t channel,
                    int64_t n) {
    const int64_t place = n * filter.Step() / filter.Phases(), phase = n * filter.Step() % filter.Phases();
    const int middle = filter.Taps() / 2;
    int64_t halves[2] = {0, 0};
    for (int tap = 0; tap < filter.Taps(); ++tap) {
        const int64_t at = (place - middle + tap) * static_cast<int64_t>(channels);
        if (at < 0 || at >= static_cast<int64_t>(in.size())) continue;
        const int64_t internal = in[static_cast<size_t>(at) + channel];
        const int64_t value = std::clamp<int64_t>(FloorDiv(internal + 8, 16), -32768, 32767);
        const int64_t coefficient = filter.Coefficient(static_cast<int32_t>(phase), tap);
        const int64_t shared = tap == middle || tap == middle + 1 ? FloorDiv(coefficient, 2) : 0;
        halves[tap > middle + 1 || shared != 0 ? 1 : 0] += (coefficient - shared) * value;
        halves[0] += shared * value;
    }
    return static_cast<int32_t>(FloorDiv(FloorDiv(halves[0], 2) + FloorDiv(halves[1], 2) + 1024, 2048));
}

Samples Model(const LSincFilter& filter, const Samples& in, size_t channels, int64_t from, size_t frames) {
    Samples out(frames * channels);
    for (size_t i = 0; i < out.size(); ++i)
        out[i] = ModelSample(filter, in, channels, i % channels, from + static_cast<int64_t>(i / channels));
    return out;
}

Samples ReadFrames(LSoundSourceBase& source, int32_t frames, int32_t pieces = kBlockFrames) {
    Samples out(static_cast<size_t>(frames) * source.GetChannels());
    for (int32_t done = 0; done < frames; done += pieces)
        source.Read(out.data() + done * source.GetChannels(), std::min(pieces, frames - done));
    return out;
}

LSoundSource Convert(Samples samples, Rates rates, int channels = 1) {
    return LSRCConvertRate::OpenSource(
        LSoundSource::Make<ArraySource>(rates.in, static_cast<uint8_t>(channels), std::move(samples)),
        rates.out);
}

// The level of a tone in decibels above the given amplitude.
double ToneDb(const Samples& samples, double hz, int32_t rate, double amplitude) {
    double re = 0, im = 0;
    for (size_t i = 0; i < samples.size(); ++i) {
        const double angle = 2 * std::numbers::pi * hz * static_cast<double>(i) / rate;
        re += samples[i] * std::cos(angle);
        im += samples[i] * std::sin(angle);
    }
    return 20 * std::log10(2 * std::hypot(re, im) / static_cast<double>(samples.size()) / amplitude);
}

// Delivers its frame numbers, and silence beyond its length; the length can be changed and may be huge.
class CountingSource final : public LSoundSourceBase {
public:
    CountingSource(int32_t rate, int32_t frames) : LSoundSourceBase(rate, 1, kFullScale16), length(frames) {}
    void Read(int32_t* samples, int32_t frames) override {
        ASSERT_LE(frames, kBlockFrames);
        for (int32_t i = 0; i < frames; ++i, ++position)
            samples[i] = position < length ? position % 0x8000 * 16 : 0;
        readBeyond = std::max(readBeyond, position - length);
    }
    int32_t GetPosition() const override { return position; }
    int32_t GetLength() const override { return length; }
    void Seek(int32_t frame) override { position = std::clamp(frame, 0, length); }
    bool IsGrowing() const override { return isGrowing; }

    int32_t length, position = 0, readBeyond = 0;
    bool isGrowing = false;
};

}  // namespace

TEST(SincFilter, FindsTheSmallestExactRatioOrAGoodOne) {
    static const struct {
        int32_t in, out, phases, step;
    } kCases[] = {
        {44100, 8000, 80, 441}, {8000, 44100, 441, 80}, {48000, 44100, 147, 160}, {44100, 11025, 1, 4},
        {640, 639, 639, 640},   {1, 639, 639, 1},       {8200000, 8200, 1, 1000},
    };
    for (const auto& c : kCases) {
        const LSincFilter filter(c.in, c.out, 15);
        EXPECT_EQ(filter.Phases(), c.phases) << c.in << " " << c.out;
        EXPECT_EQ(filter.Step(), c.step) << c.in << " " << c.out;
    }
    for (int32_t in = 7001; in < 400000; in = in * 9 / 8) {
        const LSincFilter filter(in, 8000, 15);
        const double wanted = in / 8000.0;
        EXPECT_NEAR(static_cast<double>(filter.Step()) / filter.Phases(), wanted,
                    0.001 * std::min(wanted, 1.0));
    }
    for (const Rates& far : {Rates{0, 8000}, {8000, 0}, {-1, -1}, {1, 8000}, {INT32_MAX, 8000}})
        EXPECT_FALSE(LSincFilter::CanConvert(far.in, far.out)) << far.in;
}

TEST(SincFilter, IsASincUnderAKaiserWindowWithAGainOfOneInEachPhase) {
    static const struct {
        Rates rates;
        int taps;
        double cutOff, beta;
    } kCases[] = {{{44100, 8000}, 63, 20.0 / 21 / 5.5125, 5.248982},
                  {{8000, 44100}, 63, 20.0 / 21, 9.0},
                  {{22050, 8000}, 15, 0.8 / 2.75625, 3.503155}};
    const auto window = [](double beta, double x) {
        double sum = 0;
        for (int k = 0; k <= 6; ++k)
            sum += std::pow(beta * std::sqrt(1 - x * x) / 2, 2 * k) / std::pow(std::tgamma(k + 1.0), 2);
        return sum;
    };
    for (const auto& c : kCases) {
        const LSincFilter filter(c.rates.in, c.rates.out, c.taps);
        for (int32_t phase = 0; phase < filter.Phases(); ++phase) {
            std::vector<double> exact;
            for (int tap = 0; tap < c.taps; ++tap) {
                const double x = tap - c.taps / 2 - static_cast<double>(phase) / filter.Phases();
                const double angle = std::numbers::pi * c.cutOff * x, edge = std::abs(x) / (c.taps / 2);
                exact.push_back(
                    edge >= 1 ? 0 : (angle == 0 ? 1 : std::sin(angle) / angle) * window(c.beta, edge));
            }
            const double sum = std::accumulate(exact.begin(), exact.end(), 0.0);
            int32_t total = 0;
            for (int tap = 0; tap < c.taps; ++tap) {
                total += filter.Coefficient(phase, tap);
                ASSERT_NEAR(filter.Coefficient(phase, tap), exact[static_cast<size_t>(tap)] / sum * 65536,
                            1.2)
                    << c.rates.in << " phase " << phase << " tap " << tap;
            }
            ASSERT_EQ(total, 65536);
        }
    }
}

// Equal values round alike in every build: where one of two has to be larger, it is the one in front.
TEST(SincFilter, RoundsTapsOnEitherSideOfTheMiddleTheSameInEveryBuild) {
    for (const Rates& rates : kRates) {
        const LSincFilter filter(rates.in, rates.out, 63);
        for (int32_t half = 0; half < 2 && filter.Phases() * half % 2 == 0; ++half) {
            const int32_t phase = filter.Phases() * half / 2;
            for (int32_t tap = 1; tap < 31; ++tap) {
                const int32_t difference =
                    filter.Coefficient(phase, tap) - filter.Coefficient(phase, 62 + half - tap);
                EXPECT_TRUE(difference == 0 || difference == 1) << rates.in << " " << phase << " " << tap;
            }
        }
    }
}

// The input that drives every product of a sample the same way is the worst for each part of its sum.
TEST(Kernels, InterpolateTheWorstInputOfEachPhaseWithoutOverflow) {
    for (const Rates& rates : kRates) {
        for (int32_t taps : {15, 63}) {
            const LSincFilter filter(rates.in, rates.out, taps);
            LSincRows rows = filter.Rows();
            rows.step = 64 * rows.phases;  // the same phase five times: a whole vector and one more
            for (int32_t phase = 0; phase < filter.Phases(); ++phase) {
                for (int sign : {1, -1}) {
                    std::vector<int16_t> history(5 * 64);
                    for (size_t i = 0; i < history.size(); ++i)
                        history[i] =
                            static_cast<int32_t>(i % 64) < taps &&
                                    filter.Coefficient(phase, static_cast<int32_t>(i % 64)) * sign > 0
                                ? 32767
                                : -32768;
                    int64_t halves[2] = {0, 0};
                    const size_t half = rows.half;
                    for (size_t i = 0; i < 2 * half; ++i)
                        halves[i / half] += int64_t{rows.rows[static_cast<size_t>(phase) * 2 * half + i]} *
                                            history[i < half ? i + 1 : i - 1];
                    const int64_t expected =
                        FloorDiv(FloorDiv(halves[0], 2) + FloorDiv(halves[1], 2) + 1024, 2048);
                    for (const LKernels* kernels : AllKernels()) {
                        int32_t out[5];
                        kernels->interpolate(rows, static_cast<uint32_t>(phase), history.data(), out, 5, 1);
                        for (int32_t sample : out) ASSERT_EQ(sample, expected) << rates.in << " " << phase;
                    }
                }
            }
        }
    }
}

TEST(Kernels, InterpolateTheSameInAllVersionsAtAnyPlaceAndCount) {
    std::mt19937 random(7);
    std::vector<int16_t> history(200);
    for (int16_t& v : history) v = static_cast<int16_t>(random());
    for (const int32_t taps : {15, 63}) {
        const LSincFilter filter(44100, 8000, taps);
        for (size_t i = 0; i < 80; ++i) {
            const size_t count = i % 10, stride = 1 + i / 40;
            Samples out[3];
            for (size_t version = 0; version < AllKernels().size(); ++version) {
                out[version].resize(30);  // what lies behind the samples, or between them, is not touched
                AllKernels()[version]->interpolate(filter.Rows(), static_cast<uint32_t>(i),
                                                   history.data() + i, out[version].data(), count, stride);
                EXPECT_TRUE(IsFloatingPointUnitClean());
                EXPECT_EQ(out[version], out[0]) << taps << " " << i;
            }
        }
    }
}

TEST(Kernels, NarrowRoundsAndHoldsAtFullScale) {
    Samples in = {0, 7, 8, -8, -9, 0x7FFF0, 0x7FFF7, 0x7FFF8, -0x80000, -0x80009, INT32_MAX, INT32_MIN};
    const Samples noise = Noise(101, 0x100000);
    in.insert(in.end(), noise.begin(), noise.end());
    for (const LKernels* kernels : AllKernels()) {
        std::vector<int16_t> out(in.size());
        kernels->narrow(in.data(), out.data(), in.size());
        for (size_t i = 0; i < in.size(); ++i)
            ASSERT_EQ(out[i], std::clamp<int64_t>(FloorDiv(int64_t{in[i]} + 8, 16), -32768, 32767)) << in[i];
    }
}

TEST(ConvertRate, DeliversEachSampleAsTheRuleSaysAlsoAfterASeek) {
    for (const Rates& rates : kRates) {
        for (int channels : {1, 2}) {
            const LSincFilter filter(rates.in, rates.out, 63);
            const Samples in = Noise(static_cast<size_t>(3000 * channels), 0x90000);
            const LSoundSource source = Convert(in, rates, channels);
            const int32_t length = source->GetLength();
            ASSERT_EQ(length, int64_t{3000} * filter.Phases() / filter.Step());
            const Samples whole =
                Model(filter, in, static_cast<size_t>(channels), 0, static_cast<size_t>(length) + 300);
            ASSERT_EQ(ReadFrames(*source, length + 300, 977), whole) << rates.in << " " << rates.out;
            EXPECT_EQ(source->GetPosition(), length + 300);
            for (int32_t frame : {0, 1, 5, 57, length / 2, length - 1, length, length + 9, -3}) {
                source->Seek(frame);
                const int32_t from = std::clamp(frame, 0, length);
                EXPECT_EQ(source->GetPosition(), from);
                ASSERT_EQ(ReadFrames(*source, 70),
                          Samples(whole.begin() + from * channels, whole.begin() + (from + 70) * channels))
                    << rates.in << " " << rates.out << " from " << frame;
                EXPECT_EQ(source->GetPosition(), from + 70);
            }
        }
    }
}

TEST(ConvertRate, KeepsATonesLevelAndItsPlaceInTime) {
    for (const Rates& rates : {Rates{44100, 8000}, {8000, 44100}, {22050, 8000}, {8000, 11025}}) {
        const LSoundSource source =
            Convert(Tone(static_cast<size_t>(rates.in), 400, rates.in, 0x40000), rates);
        const Samples out = ReadFrames(*source, rates.out);
        const Samples wanted = Tone(out.size(), 400, rates.out, 0x40000);
        EXPECT_NEAR(ToneDb(out, 400, rates.out, 0x40000), 0.0, 0.05) << rates.in;
        for (size_t i = 100; i + 100 < out.size(); ++i) ASSERT_NEAR(out[i], wanted[i], 0x40000 * 0.006) << i;
    }
    const Samples steady = ReadFrames(*Convert(Samples(8000, 0x7FFF0), {44100, 8000}), 1000);
    for (size_t i = 10; i < steady.size(); ++i) ASSERT_EQ(steady[i], 0x7FFF0);
}

TEST(ConvertRate, KeepsAnHourAnHourAndLongerOnesToo) {
    static const struct {
        Rates rates;
        int32_t frames, length;
    } kCases[] = {
        {{44100, 8000}, 158760000, 28800000},
        {{8000, 44100}, 28800000, 158760000},
        {{48000, 8000}, 4 * 172800000, 4 * 28800000},
        {{8000, 48000}, 432000000, INT32_MAX},
    };
    for (const auto& c : kCases) {
        const LSoundSource source = LSRCConvertRate::OpenSource(
            LSoundSource::Make<CountingSource>(c.rates.in, c.frames), c.rates.out);
        EXPECT_EQ(source->GetLength(), c.length);
        if (c.length == INT32_MAX) continue;
        source->Seek(c.length - 10000);
        EXPECT_EQ(source->GetPosition(), c.length - 10000);
        ReadFrames(*source, 10000);
        EXPECT_EQ(source->GetPosition(), c.length);
    }
}

// A tone of twice full scale comes out turned down, not cut off at full scale: the overtone is what cutting adds.
TEST(ConvertRate, GetsWhatIsTooLoudFromALimiter) {
    Samples taken;
    NotingContext context;
    LPRSourceToSink process(
        LSoundSource::Make<ArraySource>(44100, uint8_t{1}, Tone(44100, 500, 44100, 0x100000), 0x100000),
        LSoundSink::Make<CollectingSink>(8000, uint8_t{1}, taken));
    ASSERT_EQ(process.Process(context), ProcessResult::Done);
    EXPECT_NEAR(ToneDb(taken, 500, 8000, 0x7FFF0), 0.0, 0.2);
    EXPECT_LT(ToneDb(taken, 1500, 8000, 0x7FFF0), -50.0);
}

TEST(ConvertRate, ReadsAGrowingSourceOnlyAsFarAsItGoesAndTrustsNoEstimate) {
    for (const Rates& rates : {Rates{44100, 8000}, {8000, 44100}}) {
        const LSoundSource whole =
            LSRCConvertRate::OpenSource(LSoundSource::Make<CountingSource>(rates.in, 9000), rates.out);
        const Samples expected = ReadFrames(*whole, whole->GetLength(), 4000);

        const LSoundSource counting = LSoundSource::Make<CountingSource>(rates.in, 20);
        auto& grower = static_cast<CountingSource&>(*counting);
        grower.isGrowing = true;
        const LSoundSource source = LSRCConvertRate::OpenSource(counting, rates.out);
        Samples out;
        for (int32_t length : {20, 100, 101, 4000, 9000, 9000}) {
            grower.length = length;
            if (length == 101) source->Seek(source->GetPosition());
            while (source->GetPosition() < source->GetLength()) {
                const int32_t frames = std::min(source->GetLength() - source->GetPosition(), 4000);
                const Samples more = ReadFrames(*source, frames);
                out.insert(out.end(), more.begin(), more.end());
            }
            EXPECT_EQ(grower.readBeyond, 0) << length;
        }
        grower.isGrowing = false;
        const Samples rest = ReadFrames(*source, source->GetLength() - source->GetPosition());
        out.insert(out.end(), rest.begin(), rest.end());
        EXPECT_EQ(out, expected);
    }
    // The wrapped source finds out that there is more than it thought: nothing ends early.
    const LSoundSource counting = LSoundSource::Make<CountingSource>(16000, 1000);
    const LSoundSource source = LSRCConvertRate::OpenSource(counting, 8000);
    ReadFrames(*source, 400);
    static_cast<CountingSource&>(*counting).length = 5000;
    EXPECT_EQ(source->GetLength(), 2500);
    EXPECT_EQ(source->GetPosition(), 400);
}

TEST(ConvertRate, DoublesTheLevelAndRefusesWhatItCannotConvert) {
    static const struct {
        int channels, level, rate;
        bool error;
        int outLevel, outRate;
        const char* trace;
    } kCases[] = {
        {1, kFullScale16, 8000, false, 2 * kFullScale16, 8000, ""},
        {2, 0x100000, 8000, false, 0x200000, 8000, ""},
        {1, 0x100001, 8000, false, 0x100001, 8000, ""},
        {1, 16, 44100, false, 16, 44100, ""},
        {1, 16, 0, true, 32, 44100, "LSoundSourceBase::SetSampleRate SampleRate <= 0 ERROR"},
        {3, 16, 8000, true, 32, 8000, "Multichannels (or 0) used when BUILD_SUPPORT_MULTICHANS is not set"},
        {1, 16, 1, true, 32, 1, "LSRCConvertRate::LSRCConvertRate rates too far apart"},
    };
    for (const auto& c : kCases) {
        TraceLog log;
        const LSoundSource source = LSRCConvertRate::OpenSource(
            LSoundSource::Make<ArraySource>(44100, static_cast<uint8_t>(c.channels), Samples(90, 5000),
                                            c.level),
            c.rate);
        EXPECT_EQ(source->IsError(), c.error) << c.trace;
        EXPECT_EQ(source->GetLevel(), c.outLevel) << c.trace;
        EXPECT_EQ(source->GetSampleRate(), c.outRate);
        EXPECT_TRUE(c.error ? log.Has(c.trace) : log.All().empty()) << log.All();
        source->Seek(2);
        const Samples silence = ReadFrames(*source, 5);
        EXPECT_EQ(silence == Samples(silence.size(), 0), c.error);
        EXPECT_EQ(source->GetPosition() >= source->GetLength(), c.error)
            << "whoever reads to its end gets there";
    }
    EXPECT_TRUE(LSRCConvertRate::OpenSource(LSoundSource(), 8000)->IsError());
}

static Samples ThroughSink(Rates rates, const Samples& in, size_t piece) {
    Samples taken;
    const LSoundSink sink = LSinkConvertRateBase::OpenSink(
        LSoundSink::Make<CollectingSink>(rates.out, uint8_t{1}, taken), rates.in);
    EXPECT_FALSE(sink->IsError());
    for (size_t i = 0; i < in.size(); i += piece)
        sink->Write(in.data() + i, static_cast<int32_t>(std::min(piece, in.size() - i)));
    EXPECT_EQ(sink->GetFrames(), static_cast<int32_t>(in.size()));
    const_cast<LSoundSink&>(sink).Reset();
    return taken;
}

TEST(SinkConvertRate, WritesEachSampleAsTheRuleSaysAndAsLongAsTheInput) {
    for (const Rates& rates : kRates) {
        const LSincFilter filter(rates.in, rates.out, 15);
        const Samples in = Noise(20000, 0x90000);
        const int64_t frames = (int64_t{20000} * filter.Phases() + filter.Step() - 1) / filter.Step();
        const Samples expected = Model(filter, in, 1, 0, static_cast<size_t>(frames));
        for (size_t piece : {8192u, 441u}) EXPECT_EQ(ThroughSink(rates, in, piece), expected) << rates.in;
    }
    EXPECT_EQ(ThroughSink({44100, 8000}, {}, 1), Samples());
    EXPECT_EQ(ThroughSink({8000, 8000}, {1, 2, 3}, 3), (Samples{1, 2, 3}));
}

// Speech, silence that is cut off again, speech: both stand behind each other as if there had been no silence
// between them, but for the frames that the filter reaches across the cut.
TEST(SinkConvertRate, CutsWhatItsInputCutsAndNothingElse) {
    for (const Rates& rates : kRates) {
        const LSincFilter filter(rates.in, rates.out, 15);
        for (int32_t silence : {0, 1, 14, 15, 9000, 25000}) {
            const Samples speech = Noise(9001, 0x7FFF0), more = Noise(4000, 0x7FFF0, 2);
            Samples joined = speech, taken(50, 77);
            joined.insert(joined.end(), more.begin(), more.end());
            {
                LSoundSink file = LSoundSink::Make<CollectingSink>(rates.out, uint8_t{1}, taken);
                static_cast<CollectingSink&>(*file).StartAt(50);
                const LSoundSink sink = LSinkConvertRateBase::OpenSink(file, rates.in);
                const int32_t start = sink->GetFrames();
                EXPECT_EQ(start, filter.ToInput(50));
                sink->Write(speech.data(), 9001);
                for (int32_t i = 0; i < silence; i += 5000)
                    sink->Write(Samples(5000).data(), std::min(silence - i, 5000));
                sink->Truncate(start + 9001 + silence + 1);  // ignored
                sink->Truncate(start + 9001);
                EXPECT_EQ(sink->GetFrames(), start + 9001);
                sink->Write(more.data(), 4000);
            }
            const int32_t frames = filter.OutputsBefore(13001);
            ASSERT_EQ(taken.size(), static_cast<size_t>(frames) + 50) << rates.in << " " << silence;
            for (int32_t i = 0; i < frames; ++i) {
                const bool nearCut = std::abs(filter.ToInput(i) - 9001) <= 8;
                if (nearCut && silence > 0) continue;
                ASSERT_EQ(taken[static_cast<size_t>(i) + 50], ModelSample(filter, joined, 1, 0, i))
                    << rates.in << " " << silence << " at " << i;
            }
        }
    }
    Samples taken(50, 77);
    {
        LSoundSink file = LSoundSink::Make<CollectingSink>(8000, uint8_t{1}, taken);
        static_cast<CollectingSink&>(*file).StartAt(50);
        const LSoundSink sink = LSinkConvertRateBase::OpenSink(file, 44100);
        sink->Write(Noise(8000, 9999).data(), 8000);
        sink->Truncate(-1);
    }
    EXPECT_EQ(taken, Samples(50, 77)) << "what was there before is not cut";
}

// Like a compressed file.
class UncutSink final : public LSoundSinkBase {
public:
    UncutSink(int32_t rate, Samples& taken) : LSoundSinkBase(rate, 1), m_taken(taken) {}
    void Write(const int32_t* samples, int32_t frames) override {
        m_taken.insert(m_taken.end(), samples, samples + frames);
        AddFrames(frames);
    }

private:
    Samples& m_taken;
};

TEST(RecordSpeed, LosesNothingWhereTheTargetCannotBeCut) {
    for (int32_t rate : {8000, 11025}) {  // with a converter between them, and without
        Samples taken;
        LSoundSink sink = LRecordSpeed::OpenSink(200, LSoundSink::Make<UncutSink>(rate, taken));
        for (int i = 0; i < 4; ++i) {
            for (int j = 0; j < 4; ++j) sink->Write(Noise(8000, 0x7FFF0).data(), 8000);
            sink->Truncate(sink->GetFrames() - 30000);
        }
        EXPECT_EQ(sink->GetFrames(), 4 * 32000);
        sink.Reset();
        EXPECT_EQ(taken.size(), static_cast<size_t>(int64_t{4} * 32000 * rate / 11025 + 1 - rate / 11025));
    }
}

TEST(RecordSpeed, StoresFastAudioAtItsNormalSpeed) {
    static const struct {
        int32_t percent, rate, captureRate;
    } kCases[] = {{100, 8000, 8000},   {200, 8000, 22050},  {50, 11025, 22050},
                  {200, 11026, 44100}, {400, 11025, 22050}, {200, 22050, 44100}};
    for (const auto& c : kCases) {
        Samples taken;
        LSoundSink sink =
            LRecordSpeed::OpenSink(c.percent, LSoundSink::Make<CollectingSink>(c.rate, uint8_t{1}, taken));
        ASSERT_TRUE(sink && !sink->IsError());
        EXPECT_EQ(sink->GetSampleRate(), c.captureRate);
        // A second of a tone of 400 Hz, played at that speed.
        const double seconds = 100.0 / c.percent;
        const int32_t frames = static_cast<int32_t>(c.captureRate * seconds);
        const Samples tone = Tone(static_cast<size_t>(frames), 4.0 * c.percent, c.captureRate, 0x40000);
        for (int32_t i = 0; i < frames; i += kBlockFrames)
            sink->Write(tone.data() + i, std::min(frames - i, kBlockFrames));
        sink.Reset();
        EXPECT_NEAR(static_cast<double>(taken.size()), c.rate, 2.0);
        EXPECT_NEAR(ToneDb(taken, 400, c.rate, 0x40000), 0.0, 0.05) << c.percent << " " << c.rate;
    }
}

TEST(RecordSpeed, RefusesImpossibleSpeedsAndStereo) {
    Samples taken;
    for (int32_t percent : {0, -100}) {
        TraceLog log;
        EXPECT_FALSE(
            LRecordSpeed::OpenSink(percent, LSoundSink::Make<CollectingSink>(8000, uint8_t{1}, taken)));
        EXPECT_TRUE(log.Has("LRecordSpeed::OpenSink Percent==0"));
    }
    static const struct {
        int32_t percent;
        int channels;
        const char* trace;
    } kCases[] = {
        {200, 2, "LSinkConvertRateBase::LSinkConvertRateBase can only be used on mono streams"},
        {INT32_MAX, 1, "LSinkConvertRateBase::LSinkConvertRateBase rates too far apart"},
    };
    for (const auto& c : kCases) {
        TraceLog log;
        const LSoundSink sink = LRecordSpeed::OpenSink(
            c.percent, LSoundSink::Make<CollectingSink>(8000, static_cast<uint8_t>(c.channels), taken));
        EXPECT_TRUE(sink && sink->IsError());
        EXPECT_TRUE(log.Has(c.trace)) << log.All();
        sink->Write(Samples(20).data(), 10);
        sink->Truncate(0);
    }
    EXPECT_TRUE(taken.empty());
}
