#include <random>

#include "audio/convert/LSRCPeakLimit.h"
#include "audio/stream/LKernels.h"
#include "base/LArith.h"
#include "tests/unit/audio/AudioTest.h"

namespace {

// The rules in 64 bits, for a whole piece of sound at once.
class Model {
public:
    Model(const Samples& in, int64_t rate, size_t channels, int64_t limit)
        : m_limit(std::min<int64_t>(limit, 0x3FFFFF)),
          m_frames(static_cast<size_t>(std::clamp<int64_t>(rate / 35, 20, 8192))),
          m_channels(channels) {
        const size_t blocks = in.size() / (m_frames * channels) + 4;
        m_in.assign(in.begin(), in.end());
        m_in.resize(blocks * m_frames * channels);
        for (size_t b = 0; b < blocks; ++b) m_gains.push_back(BlockGain(b));
    }

    std::vector<int64_t> Output() const {
        std::vector<int64_t> out;
        int64_t gain = m_gains[0];
        for (size_t b = 0; b + 2 < m_gains.size(); ++b) {
            const int64_t before = b == 0 ? kOne : m_gains[b - 1];
            const int64_t sum = before + m_gains[b] + m_gains[b + 1] + m_gains[b + 2];
            const int64_t target = std::min({sum / 4, m_gains[b], m_gains[b + 1], m_gains[b + 2]});
            const int64_t frames = static_cast<int64_t>(m_frames);
            const int64_t step = (target - gain) / frames;
            gain += target - gain - step * frames;
            for (size_t i = b * m_frames; i < (b + 1) * m_frames; ++i, gain += step)
                for (size_t c = 0; c < m_channels; ++c)
                    out.push_back(Multiply(m_in[i * m_channels + c], gain));
        }
        return out;
    }

private:
    static constexpr int64_t kOne = 0x1000000;

    int64_t BlockGain(size_t block) const {
        int64_t peak = 0;
        for (size_t i = 0; i < m_frames * m_channels; ++i)
            peak = std::max(peak, std::abs(m_in[block * m_frames * m_channels + i]));
        return peak > m_limit ? m_limit * 512 / ((peak + 64) / 64) * 512 : kOne;
    }
    // Halves of 12 bits; a shift right is a division rounded down.
    int64_t Multiply(int64_t v, int64_t gain) const {
        const int64_t low = ((v % 4096) + 4096) % 4096, high = (v - low) / 4096;
        const int64_t cross = high * (gain % 4096) + low * (gain / 4096);
        const int64_t down = (((cross % 4096) + 4096) % 4096);
        return std::max(high * (gain / 4096) + (cross - down) / 4096, -m_limit);
    }

    int64_t m_limit;
    size_t m_frames, m_channels;
    std::vector<int64_t> m_in, m_gains;
};

// Blocks of very different loudness: quiet, at the limit, just above it, and as far as 32 bits go.
Samples Hostile(size_t count, int32_t limit, uint32_t seed) {
    std::mt19937 random(seed);
    Samples samples;
    while (samples.size() < count) {
        const int64_t loudness = int64_t{1} << random() % 32;
        const int64_t top = random() % 3 == 0 ? int64_t{limit} + random() % 200 : loudness;
        for (size_t left = 1 + random() % 700; left > 0 && samples.size() < count; --left) {
            const int64_t v = random() % 8 == 0 ? top : static_cast<int64_t>(random()) % (top + 1);
            samples.push_back(Saturate(random() % 2 ? v : -v));
        }
    }
    return samples;
}

Samples ReadFrames(LSoundSourceBase& source, int32_t frames, int32_t chunk) {
    Samples out(static_cast<size_t>(frames) * source.GetChannels());
    for (int32_t done = 0; done < frames; done += chunk)
        source.Read(&out[static_cast<size_t>(done) * source.GetChannels()], std::min(chunk, frames - done));
    return out;
}

LSoundSource Limited(int32_t rate, uint8_t channels, const Samples& in, int32_t limit) {
    return LSRCPeakLimit::OpenSource(LSoundSource::Make<ArraySource>(rate, channels, in, INT32_MAX), limit);
}

// A recording: only so much of it is there yet.
class Recording final : public LSoundSourceBase {
public:
    Recording(int32_t rate, Samples samples)
        : LSoundSourceBase(rate, 1, INT32_MAX), m_samples(std::move(samples)) {}
    void Read(int32_t* samples, int32_t frames) override {
        for (int32_t i = 0; i < frames; ++i, ++m_position)
            samples[i] = m_position < m_present ? m_samples[static_cast<size_t>(m_position)] : 0;
    }
    int32_t GetPosition() const override { return m_position; }
    int32_t GetLength() const override { return m_present; }
    void Seek(int32_t frame) override { m_position = frame; }
    bool IsGrowing() const override { return m_present < static_cast<int32_t>(m_samples.size()); }
    void Grow(int32_t frames) {
        m_present = std::min(m_present + frames, static_cast<int32_t>(m_samples.size()));
    }

private:
    Samples m_samples;
    int32_t m_present = 0, m_position = 0;
};

}  // namespace

TEST(PeakLimit, FollowsTheRulesToTheBitAndLetsNothingAboveTheLimitThrough) {
    static const struct {
        int32_t rate;
        uint8_t channels;
        int32_t limit, chunk;
    } kCases[] = {
        {100, 1, 0x7FFF0, 8192},  {8000, 1, 0x7FFF0, 8192},    {8000, 2, 0x7FFF0, 100},
        {11025, 1, 0x3FFFFF, 77}, {44100, 2, INT32_MAX, 1261}, {8000, 6, 0x7FFF0, 229},
        {22050, 1, 1000, 8192},   {196000, 1, 0x7FFF0, 8192},  {1000, 3, 0, 13},
        {8000, 1, -5, 8192},      {2000000, 1, 0x7FFF0, 8192},
    };
    for (const auto& c : kCases) {
        const int32_t limit = std::clamp(c.limit, 0, 0x3FFFFF);
        const Samples in =
            Hostile(size_t{30000} * c.channels, limit, static_cast<uint32_t>(c.rate + c.channels));
        const LSoundSource source = Limited(c.rate, c.channels, in, c.limit);
        EXPECT_EQ(source->GetLevel(), limit);
        EXPECT_EQ(source->GetLength(), 30000);
        EXPECT_EQ(source->GetPosition(), 0);
        const Samples out = ReadFrames(*source, 30000, c.chunk);
        EXPECT_EQ(source->GetPosition(), 30000);
        const std::vector<int64_t> expected = Model(in, c.rate, c.channels, limit).Output();
        for (size_t i = 0; i < out.size(); ++i) {
            ASSERT_EQ(out[i], expected[i]) << c.rate << ' ' << i;
            ASSERT_LE(std::abs(int64_t{out[i]}), limit) << c.rate << ' ' << i;
        }
    }
}

// Peaks whose gain is nearly exact: the negative product, rounded down, would pass the limit by one.
TEST(PeakLimit, HoldsTheLimitWhereProductsRoundDown) {
    static const struct {
        int32_t limit, peak;
    } kCases[] = {{1, 0x93}, {1000, 0x103F}, {kFullScale16, 0xC437F}, {0x3FFFFF, 0x7131BF}};
    for (const auto& c : kCases) {
        for (const uint8_t channels : {uint8_t{1}, uint8_t{2}, uint8_t{3}}) {
            const Samples out = ReadFrames(*Limited(100, channels, Samples(60, -c.peak), c.limit), 20, 20);
            EXPECT_EQ(*std::min_element(out.begin(), out.end()), -c.limit) << c.limit;
        }
    }
}

TEST(PeakLimit, PassesQuietSoundUnchangedAndIsLeftOutWhereTheLevelSaysSo) {
    const Samples quiet = Hostile(5000, kFullScale16, 1);
    Samples held = quiet;
    for (int32_t& v : held) v = std::clamp(v, -kFullScale16, kFullScale16);
    EXPECT_EQ(ReadFrames(*Limited(8000, 1, held, kFullScale16), 5000, 999), held);

    const LSoundSource fits = LSoundSource::Make<ArraySource>(8000, uint8_t{1}, quiet, kFullScale16);
    EXPECT_EQ(&*LSRCPeakLimit::OpenSource(fits), &*fits);
    const LSoundSource broken = LSoundSource::Make<ArraySource>(8000, uint8_t{1}, quiet, INT32_MAX, true);
    EXPECT_TRUE(LSRCPeakLimit::OpenSource(broken)->IsError());
    EXPECT_EQ(LSRCPeakLimit::BlockFrames(8000), 228);
    EXPECT_EQ(LSRCPeakLimit::BlockFrames(100), 20);
    EXPECT_EQ(LSRCPeakLimit::BlockFrames(INT32_MAX), 8192);
}

TEST(PeakLimit, StartsAnewAfterASeek) {
    const Samples in = Hostile(9000, kFullScale16, 2);
    const LSoundSource source = Limited(8000, 1, in, kFullScale16);
    ReadFrames(*source, 700, 333);
    for (const int32_t place : {4321, 0, 8999, 20000, -3}) {
        const int32_t from = std::clamp(place, 0, 9000);
        source->Seek(place);
        EXPECT_EQ(source->GetPosition(), from);
        const Samples out = ReadFrames(*source, 500, 77);
        EXPECT_EQ(source->GetPosition(), from + 500);
        Samples ahead(in.begin() + from, in.end());
        ahead.resize(ahead.size() + 500);
        const auto expected = Model(ahead, 8000, 1, kFullScale16).Output();
        for (size_t i = 0; i < out.size(); ++i) ASSERT_EQ(out[i], expected[i]) << place << ' ' << i;
    }
}

// Longer than positions count: both stay at the top of their range.
class EndlessSource final : public LSoundSourceBase {
public:
    EndlessSource() : LSoundSourceBase(8000, 1, INT32_MAX) {}
    void Read(int32_t* samples, int32_t frames) override { std::fill_n(samples, frames, 1); }
    int32_t GetPosition() const override { return INT32_MAX; }
    int32_t GetLength() const override { return INT32_MAX; }
    void Seek(int32_t) override {}
};

TEST(PeakLimit, ReachesALengthBeyondWhichNothingCounts) {
    const LSoundSource source = LSRCPeakLimit::OpenSource(LSoundSource::Make<EndlessSource>());
    EXPECT_GE(source->GetPosition(), source->GetLength());
}

// Plays a recording that grows before each read, to its present end each time.
static Samples ReadAlong(const Samples& in, int32_t growth) {
    const LSoundSource recording = LSoundSource::Make<Recording>(8000, in);
    const LSoundSource source = LSRCPeakLimit::OpenSource(recording);
    Samples out;
    while (out.size() < in.size()) {
        static_cast<Recording&>(*recording).Grow(growth);
        const Samples more = ReadFrames(*source, source->GetLength() - source->GetPosition(), kBlockFrames);
        out.insert(out.end(), more.begin(), more.end());
    }
    return out;
}

TEST(PeakLimit, NeitherLosesNorOvertakesWhatIsStillBeingRecorded) {
    Samples quiet(6000);
    for (size_t i = 0; i < quiet.size(); ++i) quiet[i] = static_cast<int32_t>(i + 1);
    const Samples loud = Hostile(6000, kFullScale16, 3);
    for (const int32_t growth : {37, 228, 1000}) {
        EXPECT_EQ(ReadAlong(quiet, growth), quiet) << growth;
        for (const int32_t v : ReadAlong(loud, growth)) ASSERT_LE(std::abs(int64_t{v}), kFullScale16);
    }

    // While enough of it is there, it sounds as if it were all there.
    const LSoundSource recording = LSoundSource::Make<Recording>(8000, loud);
    static_cast<Recording&>(*recording).Grow(3000);
    const LSoundSource source = LSRCPeakLimit::OpenSource(recording);
    Samples out = ReadFrames(*source, 2000, kBlockFrames);
    static_cast<Recording&>(*recording).Grow(3000);
    const Samples rest = ReadFrames(*source, 4000, kBlockFrames);
    out.insert(out.end(), rest.begin(), rest.end());
    EXPECT_EQ(out, ReadFrames(*Limited(8000, 1, loud, kFullScale16), 6000, kBlockFrames));

    // Asked for more than there is, it gives silence and moves on, as the recording itself does.
    const LSoundSource beginning = LSoundSource::Make<Recording>(8000, quiet);
    static_cast<Recording&>(*beginning).Grow(10);
    const LSoundSource beyond = LSRCPeakLimit::OpenSource(beginning);
    Samples silent(quiet.begin(), quiet.begin() + 10);
    silent.resize(600);
    EXPECT_EQ(ReadFrames(*beyond, 600, 600), silent);
    EXPECT_EQ(beyond->GetPosition(), 600);
}

// Lengths around the width of the fast loops, at any alignment; elements of one byte or two.
template <class From, class To, class Kernel>
static void ExpectAgreement(const LKernels& kernels, Kernel LKernels::*kernel, const From* from, size_t count,
                            size_t toCount) {
    std::vector<To> fast(toCount + 1), plain(toCount + 1);  // the last one is not to be touched
    (kernels.*kernel)(from, fast.data(), count);
    (kPlainKernels.*kernel)(from, plain.data(), count);
    EXPECT_EQ(fast, plain) << count;
    EXPECT_TRUE(IsFloatingPointUnitClean());
}

static void ExpectRampsAgree(const LKernels& kernels, const int32_t* in, size_t count, size_t channels) {
    const int64_t peak = kPlainKernels.peak(in, count);
    const int32_t highest =
        static_cast<int32_t>(std::min<int64_t>(kUnityGain, (int64_t{1} << 46) / (peak + 1)));
    const size_t frames = count / channels;
    const int32_t step = highest / static_cast<int32_t>(frames + 1);
    for (const LGainRamp& ramp : {LGainRamp{0, step, -1000}, LGainRamp{highest, -step, INT32_MIN}}) {
        Samples fast(count + 1), plain(count + 1);
        kernels.ramp(ramp, in, fast.data(), frames, channels);
        kPlainKernels.ramp(ramp, in, plain.data(), frames, channels);
        EXPECT_EQ(fast, plain) << count << ' ' << channels;
    }
}

static void ExpectAllAgree(const LKernels& kernels) {
    std::mt19937 random(4);
    for (const size_t count : {0u, 1u, 3u, 4u, 7u, 8u, 15u, 16u, 17u, 31u, 33u, 250u, 1025u}) {
        for (size_t shift = 0; shift < 4; ++shift) {
            Samples in = Hostile(count + shift + 1, kFullScale16, static_cast<uint32_t>(count + shift));
            for (int32_t& v : in) {  // around the place where rounding to 8 bits is special
                if (random() % 4 == 0) v = 0x7F700 + static_cast<int32_t>(random() % 0xA00);
            }
            const int32_t* samples = in.data() + shift;
            for (const size_t channels : {1u, 2u, 5u}) ExpectRampsAgree(kernels, samples, count, channels);
            if (count > 0) in[shift + count / 2] = INT32_MIN;
            EXPECT_EQ(kernels.peak(samples, count), kPlainKernels.peak(samples, count));
            ExpectAgreement<int32_t, uint8_t>(kernels, &LKernels::toPcm8, samples, count, count);
            ExpectAgreement<int32_t, uint8_t>(kernels, &LKernels::toPcm16, samples, count, 2 * count);
            ExpectAgreement<int32_t, int16_t>(kernels, &LKernels::narrow, samples, count, count);
            Bytes pcm(2 * count + shift + 1);
            for (uint8_t& byte : pcm) byte = static_cast<uint8_t>(random());
            ExpectAgreement<uint8_t, int32_t>(kernels, &LKernels::fromPcm8, pcm.data() + shift, count, count);
            ExpectAgreement<uint8_t, int32_t>(kernels, &LKernels::fromPcm16, pcm.data() + shift, count,
                                              count);
        }
    }
}

TEST(Kernels, AreTheSameInAllVersions) {
    for (const LKernels* kernels : AllKernels()) ExpectAllAgree(*kernels);
}
