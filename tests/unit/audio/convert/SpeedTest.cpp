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

// A vowel is joined where it repeats: nowhere do two periods cancel each other.
TEST(Speed, KeepsAVowelAsLoudAsItWas) {
    static const std::tuple<int32_t, int32_t, int32_t> kCases[] = {
        {8000, 80, 70},    {8000, 80, 150},  {8000, 210, 50},   {8000, 210, 200},
        {11025, 120, 150}, {22050, 300, 70}, {44100, 100, 150}, {48000, 150, 70}};
    for (const auto& [rate, pitchHz, percent] : kCases) {
        const size_t frames = static_cast<size_t>(2 * rate), window = static_cast<size_t>(rate / 25);
        Samples vowel = Tone(frames, pitchHz, rate, 0x20000);
        const Samples overtone = Tone(frames, 5 * pitchHz, rate, 0x20000);
        for (size_t i = 0; i < frames; ++i) vowel[i] += overtone[i];
        const Samples heard = AtSpeed(Array(rate, vowel), percent);
        EXPECT_NEAR(static_cast<double>(heard.size()), 200.0 * rate / percent, 1);
        for (size_t at = 0; at + window < heard.size(); at += window / 4)
            EXPECT_NEAR(LoudnessAt(heard, at, window) / 0x20000, 1, 0.1)
                << rate << " Hz, " << pitchHz << " at " << percent << ": " << at;
    }
}

// What is heard moves on frame by frame, at the speaker's own pitch, but for a fade in every 20 ms, and keeps
// to the place that the speed says.
TEST(Speed, KeepsThePitchAndThePlace) {
    for (const int32_t percent : {50, 70, 150, 200}) {
        const Samples heard = AtSpeed(Array(8000, Ramp(16000)), percent);
        for (size_t i = 1; i < heard.size(); ++i) {
            ASSERT_TRUE(i % 160 <= 80 || heard[i] == heard[i - 1] + 1) << i << " at " << percent;
            ASSERT_NEAR(heard[i], static_cast<double>(i) * percent / 100, 300) << i << " at " << percent;
        }
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
    const Samples noise = Noise(24000, 0x40000);
    LSoundSource speed = LSpeedSource::OpenSource(Array(8000, noise), 70);
    const Samples whole = ReadFrames(*speed, speed->GetLength() + 50);
    EXPECT_EQ(Samples(whole.end() - 50, whole.end()), Samples(50));
    speed->Seek(0);
    EXPECT_EQ(ReadFrames(*speed, speed->GetLength() + 50, 8192), whole);
    speed->Seek(10001);
    const Samples once = ReadFrames(*speed, 5000);
    EXPECT_TRUE(std::equal(once.begin(), once.begin() + 160, noise.begin() + 7000)) << "from the exact frame";
    speed->Seek(10001);
    EXPECT_EQ(ReadFrames(*speed, 5000, 160), once);
    speed->Seek(INT32_MAX);
    EXPECT_EQ(speed->GetPosition(), speed->GetLength());
}

// A second channel of opposite phase does not hide the first; one beside a silent first is heard.
TEST(Speed, CutsAllChannelsAtTheSamePlaces) {
    const Samples noise = Noise(16000, 0x40000);
    Samples opposite, rightOnly;
    for (const int32_t v : noise) {
        opposite.insert(opposite.end(), {v, -v});
        rightOnly.insert(rightOnly.end(), {0, v});
    }
    const Samples mono = AtSpeed(Array(8000, noise), 150);
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
    const Samples noise = Noise(24000, 0x40000);
    for (const int32_t percent : {50, 70, 150, 200}) {
        const auto open = [&](const LSoundSource& s) { return LSpeedSource::OpenSource(s, percent); };
        EXPECT_EQ(ReadWhileItGrows(noise, 8000, kFullScale16, open, 1111),
                  AtSpeed(Array(8000, noise), percent));
    }
}
