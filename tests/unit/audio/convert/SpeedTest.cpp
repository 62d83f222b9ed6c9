#include "audio/convert/LSpeedSource.h"
#include "tests/unit/audio/SoundKit.h"

static LSoundSource Array(int32_t rate, const Samples& samples, uint8_t channels = 1) {
    return LSoundSource::Make<ArraySource>(rate, channels, samples);
}

static Samples AtSpeed(const LSoundSource& source, int32_t percent) {
    LSoundSource speed = LSpeedSource::OpenSource(source, percent);
    return ReadFrames(*speed, speed->GetLength());
}

TEST(Speed, WrapsOnlyWhatIsNeeded) {
    LSoundSource source = Array(8000, Samples(9000));
    EXPECT_EQ(&*LSpeedSource::OpenSource(source, 100), &*source);
    LSoundSource null;
    EXPECT_EQ(&*LSpeedSource::OpenSource(null, 70), &*null);
    source->Seek(700);
    EXPECT_EQ(LSpeedSource::OpenSource(source, 70)->GetPosition(), 1000);
    EXPECT_EQ(LSpeedSource::OpenSource(source, 7)->GetLength(), 18000) << "held at 50 percent";
    EXPECT_EQ(LSpeedSource::OpenSource(source, 700)->GetLength(), 4500) << "held at 200 percent";
}

TEST(Speed, PlacesConvertThereAndBack) {
    for (const int32_t percent : {50, 70, 150, 200}) {
        for (const int32_t place : {0, 1, 2, 6, 7, 8000, 999'999'999}) {
            const int32_t back =
                LSpeedSource::ToSourceFrame(LSpeedSource::FromSourceFrame(place, percent), percent);
            EXPECT_TRUE(back == place || (percent > 100 && back == place + 1)) << place << " at " << percent;
        }
    }
    EXPECT_EQ(LSpeedSource::FromSourceFrame(INT32_MAX, 70), INT32_MAX);
}

static void ExpectSameVoice(const Samples& spoken, const Samples& heard, int32_t rate, double pitchHz) {
    EXPECT_LT(LargestStep(heard), LargestStep(spoken) * 1.15) << "clicks";
    const size_t window = static_cast<size_t>(rate / 25);
    const double speed = static_cast<double>(spoken.size()) / static_cast<double>(heard.size());
    double xy = 0, xx = 0, yy = 0, x1 = 0, y1 = 0, n = 0, pitchSum = 0;
    for (size_t at = 2 * window; at + 4 * window < heard.size(); at += window, ++n) {
        const size_t half = window / 2;
        const size_t from = static_cast<size_t>(static_cast<double>(at + half) * speed) - half;
        const double x = LoudnessAt(spoken, from, window), y = LoudnessAt(heard, at, window);
        x1 += x, y1 += y, xx += x * x, yy += y * y, xy += x * y;
        const double is = PitchAt(heard, rate, at, pitchHz), was = PitchAt(spoken, rate, from, pitchHz);
        EXPECT_NEAR(is / was, 1, 0.05) << "at " << at;
        pitchSum += is / was;
    }
    EXPECT_NEAR(pitchSum / n, 1, 0.01);
    EXPECT_GT((n * xy - x1 * y1) / std::sqrt((n * xx - x1 * x1) * (n * yy - y1 * y1)), 0.97);
}

// Pitch, duration, syllables and smoothness.
TEST(Speed, KeepsTheVoice) {
    static const struct {
        int32_t rate;
        double pitchHz;
        int32_t percent;
    } kCases[] = {{8000, 80, 70},    {8000, 80, 150},  {8000, 210, 50},   {8000, 210, 200},
                  {11025, 120, 150}, {22050, 300, 70}, {44100, 100, 150}, {48000, 150, 70}};
    for (const auto& c : kCases) {
        SCOPED_TRACE(testing::Message() << c.rate << " Hz, " << c.pitchHz << " at " << c.percent);
        const Samples spoken = Voice(c.rate, 2, c.pitchHz);
        const Samples heard = AtSpeed(Array(c.rate, spoken), c.percent);
        ASSERT_EQ(heard.size(), (spoken.size() * 100 + size_t(c.percent) - 1) / size_t(c.percent));
        ExpectSameVoice(spoken, heard, c.rate, c.pitchHz);
    }
}

TEST(Speed, BeginsAndEndsWithTheSource) {
    Samples noise(8000);
    uint32_t seed = 1;
    for (int32_t& v : noise) v = static_cast<int32_t>((seed = seed * 69069 + 1) >> 13) - 0x40000;
    for (const int32_t percent : {70, 150, 200}) {
        for (size_t length = 7900; length < 8000; length += 7) {
            const Samples source(noise.begin(), noise.begin() + static_cast<ptrdiff_t>(length));
            const Samples heard = AtSpeed(Array(8000, source), percent);
            EXPECT_TRUE(std::equal(heard.begin(), heard.begin() + 160, source.begin())) << percent;
            // Fades of like with like lose up to 3 in rounding.
            for (size_t i = 1; i <= 40; ++i)
                ASSERT_NEAR(heard[heard.size() - i], source[length - i], 3) << percent << " of " << length;
        }
    }
}

TEST(Speed, DependsOnThePlaceAlone) {
    const Samples voice = Voice(8000, 3, 110);
    LSoundSource speed = LSpeedSource::OpenSource(Array(8000, voice), 70);
    const Samples whole = ReadFrames(*speed, speed->GetLength() + 50);
    EXPECT_EQ(Samples(whole.end() - 50, whole.end()), Samples(50));
    speed->Seek(0);
    EXPECT_EQ(ReadFrames(*speed, speed->GetLength() + 50, 8192), whole);
    speed->Seek(10001);
    const Samples once = ReadFrames(*speed, 5000);
    EXPECT_TRUE(std::equal(once.begin(), once.begin() + 160, voice.begin() + 7000)) << "from the exact frame";
    ReadFrames(*speed, 77);
    speed->Seek(10001);
    EXPECT_EQ(ReadFrames(*speed, 5000, 160), once);
    speed->Seek(INT32_MAX);
    EXPECT_EQ(speed->GetPosition(), speed->GetLength());
}

TEST(Speed, CutsAllChannelsAtTheSamePlaces) {
    const Samples voice = Voice(8000, 2, 110);
    Samples opposite, rightOnly;
    for (const int32_t v : voice) {
        opposite.insert(opposite.end(), {v, -v});
        rightOnly.insert(rightOnly.end(), {0, v});
    }
    const Samples mono = AtSpeed(Array(8000, voice), 150);
    const Samples both = AtSpeed(Array(8000, opposite, 2), 150),
                  right = AtSpeed(Array(8000, rightOnly, 2), 150);
    ASSERT_EQ(both.size(), 2 * mono.size());
    for (size_t i = 0; i < mono.size(); ++i) {
        ASSERT_EQ(both[2 * i], mono[i]) << i;
        ASSERT_NEAR(both[2 * i + 1], -mono[i], 4) << i;
        ASSERT_EQ(right[2 * i + 1], mono[i]) << i;
    }
}

// A recording that is being made. Nothing may be read that is not there yet.
class GrowingSource final : public LSoundSourceBase {
public:
    explicit GrowingSource(const Samples& all) : LSoundSourceBase(8000, 1, kFullScale16), m_all(all) {}
    void Read(int32_t* samples, int32_t frames) override {
        for (int32_t i = 0; i < frames; ++i, ++m_position) {
            EXPECT_TRUE(m_position < present || !isGrowing) << "reads ahead of the recorder";
            samples[i] = m_position < present ? m_all[static_cast<size_t>(m_position)] : 0;
        }
    }
    int32_t GetPosition() const override { return m_position; }
    int32_t GetLength() const override { return present; }
    void Seek(int32_t frame) override { m_position = std::clamp(frame, 0, present); }
    bool IsGrowing() const override { return isGrowing; }
    static inline int32_t present;
    static inline bool isGrowing;

private:
    const Samples& m_all;
    int32_t m_position = 0;
};

TEST(Speed, FollowsARecordingThatGrows) {
    const Samples voice = Voice(8000, 3, 110);
    for (const int32_t percent : {50, 70, 150, 200}) {
        GrowingSource::present = 0;
        GrowingSource::isGrowing = true;
        LSoundSource speed = LSpeedSource::OpenSource(LSoundSource::Make<GrowingSource>(voice), percent);
        EXPECT_EQ(speed->GetLength(), 0);
        Samples heard;
        while (GrowingSource::isGrowing) {
            GrowingSource::present = std::min(GrowingSource::present + 1111, 24000);
            GrowingSource::isGrowing = GrowingSource::present < 24000;
            EXPECT_LE(LSpeedSource::ToSourceFrame(speed->GetLength(), percent), GrowingSource::present + 1);
            const Samples more = ReadFrames(*speed, speed->GetLength() - speed->GetPosition());
            heard.insert(heard.end(), more.begin(), more.end());
        }
        EXPECT_EQ(heard, AtSpeed(Array(8000, voice), percent))
            << "as if it had been there from the beginning";
    }
}

TEST(BestJoin, FindsTheContinuation) {
    for (const int32_t rate : {1000, 8000, 11025, 44100, 48000, 192000}) {
        const int32_t overlap = rate / 100, reach = rate / 125;
        LBestJoin join(rate, 1, overlap, reach);
        const Samples silence(static_cast<size_t>(overlap + 2 * reach));
        EXPECT_EQ(join.Find(silence.data(), silence.data()), reach) << "the middle of silence";
        // Two pitches that never repeat together within the reach, as loud as can be.
        Samples window = silence;
        for (size_t i = 0; i < window.size(); ++i) {
            const double t = 2 * std::numbers::pi * static_cast<double>(i) / rate;
            window[i] = static_cast<int32_t>(0x40000 * (std::sin(90 * t) + std::sin(237 * t)));
        }
        for (const int32_t at : {0, 1, reach / 3, reach, 2 * reach - 1, 2 * reach}) {
            const Samples expected(window.begin() + at, window.begin() + at + overlap);
            EXPECT_NEAR(join.Find(expected.data(), window.data()), at, rate / 48000) << rate;
        }
    }
}
