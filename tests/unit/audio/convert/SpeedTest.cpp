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
    EXPECT_EQ(LSpeedSource::FromSourceFrame(INT32_MAX, 70), INT32_MAX);
    for (const int32_t place : {0, 1, 2, 6, 7, 8000, 999'999'999})
        EXPECT_EQ(LSpeedSource::ToSourceFrame(LSpeedSource::FromSourceFrame(place, 70), 70), place);
}

// Pitch and loudness of each syllable where they belong, and no clicks.
static void ExpectSameVoice(const Samples& spoken, const Samples& heard, int32_t rate, double pitchHz) {
    EXPECT_LT(LargestStep(heard), LargestStep(spoken) * 1.15) << "clicks";
    const size_t window = static_cast<size_t>(rate / 25), half = window / 2;
    const double speed = static_cast<double>(spoken.size()) / static_cast<double>(heard.size());
    double xy = 0, xx = 0, yy = 0, x1 = 0, y1 = 0, n = 0, pitchSum = 0;
    for (size_t at = 2 * window; at + 4 * window < heard.size(); at += window, ++n) {
        const size_t from = static_cast<size_t>(static_cast<double>(at + half) * speed) - half;
        const double x = LoudnessAt(spoken, from, window), y = LoudnessAt(heard, at, window);
        x1 += x, y1 += y, xx += x * x, yy += y * y, xy += x * y;
        const double change = PitchAt(heard, rate, at, pitchHz) / PitchAt(spoken, rate, from, pitchHz);
        EXPECT_NEAR(change, 1, 0.05) << "at " << at;
        pitchSum += change;
    }
    EXPECT_NEAR(pitchSum / n, 1, 0.01);
    EXPECT_GT((n * xy - x1 * y1) / std::sqrt((n * xx - x1 * x1) * (n * yy - y1 * y1)), 0.97);
}

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
    const Samples noise = Noise(8000, 0x40000);
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
    speed->Seek(10001);
    EXPECT_EQ(ReadFrames(*speed, 5000, 160), once);
    speed->Seek(INT32_MAX);
    EXPECT_EQ(speed->GetPosition(), speed->GetLength());
}

// A second channel of opposite phase does not hide the first; one beside a silent first is heard.
TEST(Speed, CutsAllChannelsAtTheSamePlaces) {
    const Samples voice = Voice(8000, 2, 110);
    Samples opposite, rightOnly;
    for (const int32_t v : voice) {
        opposite.insert(opposite.end(), {v, -v});
        rightOnly.insert(rightOnly.end(), {0, v});
    }
    const Samples mono = AtSpeed(Array(8000, voice), 150);
    const Samples both = AtSpeed(Array(8000, opposite, 2), 150);
    const Samples right = AtSpeed(Array(8000, rightOnly, 2), 150);
    ASSERT_EQ(both.size(), 2 * mono.size());
    for (size_t i = 0; i < mono.size(); ++i) {
        ASSERT_EQ(both[2 * i], mono[i]) << i;
        ASSERT_NEAR(both[2 * i + 1], -mono[i], 4) << i;
        ASSERT_EQ(right[2 * i + 1], mono[i]) << i;
    }
}

TEST(Speed, FollowsARecordingThatGrowsAsIfItHadBeenThereFromTheBeginning) {
    const Samples voice = Voice(8000, 3, 110);
    for (const int32_t percent : {50, 70, 150, 200}) {
        const LSoundSource recording = Array(8000, voice);
        auto& grower = static_cast<ArraySource&>(*recording);
        grower.present = 0;
        grower.isGrowing = true;
        LSoundSource speed = LSpeedSource::OpenSource(recording, percent);
        EXPECT_EQ(speed->GetLength(), 0);
        Samples heard;
        while (grower.isGrowing) {
            grower.present = std::min(grower.present + 1111, 24000);
            grower.isGrowing = grower.present < 24000;
            heard = heard + ReadFrames(*speed, speed->GetLength() - speed->GetPosition());
        }
        EXPECT_EQ(grower.readAhead, 0) << percent;
        EXPECT_EQ(heard, AtSpeed(Array(8000, voice), percent)) << percent;
    }
}

TEST(BestJoin, FindsTheContinuation) {
    for (const int32_t rate : {1000, 8000, 11025, 44100, 48000, 192000}) {
        const int32_t overlap = rate / 100, reach = rate / 125;
        LBestJoin join(rate, 1, overlap, reach);
        const size_t frames = static_cast<size_t>(overlap + 2 * reach);
        const Samples silence(frames);
        EXPECT_EQ(join.Find(silence.data(), silence.data()), reach) << "the middle of silence";
        // Two pitches that never repeat together within the reach, as loud as can be.
        Samples window = Tone(frames, 90, rate, 0x40000);
        const Samples second = Tone(frames, 237, rate, 0x40000);
        for (size_t i = 0; i < frames; ++i) window[i] += second[i];
        for (const int32_t at : {0, 1, reach / 3, reach, 2 * reach - 1, 2 * reach})
            EXPECT_NEAR(join.Find(window.data() + at, window.data()), at, rate / 48000) << rate;
    }
}
