#include "audio/convert/WindSource.h"
#include "audio/stream/LGain.h"
#include "tests/unit/audio/SoundKit.h"

// Frame i is 1 + i in all channels: what is heard tells where it comes from.
static LSoundSource Counting(int32_t rate, int32_t frames, int32_t at, uint8_t channels = 1) {
    Samples samples;
    for (int32_t i = 1; i <= frames; ++i) samples.insert(samples.end(), channels, i);
    LSoundSource source = LSoundSource::Make<ArraySource>(rate, channels, samples);
    source->Seek(at);
    return source;
}

TEST(Fade, AddsUpWithItsReverse) {
    const LFade fade(160, 1);
    for (size_t i = 0; i < 160; ++i) EXPECT_EQ(fade.Gains()[i] + fade.Gains()[159 - i], kUnityGain);
    Samples old = {1000, -0x80000, 5}, fresh = {7, 0x7FFF0, -5};
    LFade(1, 3).Cross(old.data(), fresh.data());  // half of each
    EXPECT_EQ(fresh, (Samples{503, -8, -1}));
}

TEST(Wind, SpeedRisesSmoothlyFromTheFirstToTheSecond) {
    constexpr int32_t kRate = 8000, kStart = 4'000'000, kStep = kRate / 10;
    const LSoundSource source = Counting(kRate, 0, 0);
    static_cast<ArraySource&>(*source).present = 2 * kStart;
    source->Seek(kStart);
    for (const double sign : {1.0, -1.0}) {
        const WindSource wind(source, sign * 1.5, sign * 8.0, 6000);
        double place = kStart - (sign < 0 ? 0.12 * kRate : 0.0);  // backwards the first snippet ends there
        for (int32_t frame = 0; frame < 8 * kRate; ++frame) {
            if (frame % kStep == 0) {
                ASSERT_NEAR(wind.ToSourceFrame(frame), place, 1.5) << sign << " at " << frame;
            }
            const double x = std::min((frame + 0.5) / (6.0 * kRate), 1.0);
            place += sign * (1.5 + 6.5 * x * x * (3 - 2 * x));
        }
    }
}

// Outside the fades each frame is that of ToSourceFrame, backwards counted from the beginning of its snippet;
// the place heard never turns back; the last thing heard is the end or the start.
TEST(Wind, IsHeardWhereItSaysAndEndsExactly) {
    static const std::tuple<int32_t, uint8_t, double, double> kCases[] = {
        {8000, 1, 1.5, 8}, {8000, 1, -1.5, -8}, {22050, 2, 4, 1}, {11025, 3, -8, -2}, {96000, 1, 1, 1}};
    for (const auto& [rate, channels, first, last] : kCases) {
        SCOPED_TRACE(testing::Message() << rate << " Hz from " << first << " to " << last);
        const int32_t frames = rate * 12, step = rate / 10, fade = rate / 50;
        const bool forward = first > 0;
        WindSource wind(Counting(rate, frames, forward ? 0 : frames, channels), first, last, 2000);
        const int32_t length = wind.GetLength();
        const Samples heard = ReadFrames(wind, length + 100);
        EXPECT_EQ(wind.GetPosition(), length + 100);
        const auto at = [&heard, width = channels](int32_t frame, int channel) {
            return heard[static_cast<size_t>(frame * width + channel)];
        };
        for (int32_t i = 0, before = forward ? 0 : frames; i < length; ++i) {
            const int32_t place = wind.ToSourceFrame(i);
            ASSERT_TRUE(forward ? place >= before : place <= before) << "turns back at " << i;
            before = place;
            if (i % step < fade || i >= length - fade) continue;
            ASSERT_EQ(at(i, 0), 1 + place + (forward ? 0 : i % step)) << i;
            ASSERT_EQ(at(i, channels - 1), at(i, 0)) << i;
        }
        EXPECT_EQ(wind.ToSourceFrame(length - 1), forward ? frames - 1 : 0);
        EXPECT_EQ(wind.ToSourceFrame(length), forward ? frames : 0);
        EXPECT_EQ(wind.ToSourceFrame(length + 9), forward ? frames : 0);
        EXPECT_EQ(Samples(heard.end() - 100 * channels, heard.end()), Samples(size_t{100} * channels));
        EXPECT_LT(std::abs(at(0, 0)), frames / 100) << "rises from silence";
        EXPECT_LT(std::abs(at(length - 1, 0)), frames / 100) << "sinks into silence";
    }
}

TEST(Wind, ShortAndMissingMaterial) {
    // At 8000 Hz a snippet is 960 frames, a step at least 1200 of the source.
    static const std::tuple<int32_t, int32_t, double, int32_t> kCases[] = {
        {8000, 8000, 1.5, 0}, {8000, 0, -1.5, 0},  {0, 0, 1.5, 0},       {0, 0, -1.5, 0},
        {1, 0, 1.5, 1},       {1, 1, -1.5, 1},     {500, 200, 1.5, 300}, {500, 200, -1.5, 200},
        {960, 0, 1.5, 960},   {2000, 0, 1.5, 960}, {2160, 0, 1.5, 1760}, {2160, 2160, -1.5, 1760},
    };
    for (const auto& [frames, at, speed, length] : kCases) {
        WindSource wind(Counting(8000, frames, at), speed, speed, 0);
        ASSERT_EQ(wind.GetLength(), length) << frames << " from " << at;
        const Samples heard = ReadFrames(wind, length + 5);
        EXPECT_EQ(Samples(heard.end() - 5, heard.end()), Samples(5));
    }
}

TEST(Wind, SeekGivesTheSameAsAnUninterruptedRun) {
    for (const double speed : {1.5, -1.5}) {
        WindSource wind(Counting(8000, 80000, speed > 0 ? 1234 : 80000), speed, speed * 4, 3000);
        const int32_t length = wind.GetLength();
        const Samples whole = ReadFrames(wind, length);
        for (const int32_t at : {length - 1, 0, 799, 800, 801, 5000, 960, length / 2}) {
            wind.Seek(at);
            EXPECT_EQ(wind.GetPosition(), at);
            EXPECT_EQ(ReadFrames(wind, length - at, 333), Samples(whole.begin() + at, whole.end())) << at;
        }
        wind.Seek(INT32_MAX);
        EXPECT_EQ(wind.GetPosition(), length);
        wind.Seek(-5);
        EXPECT_EQ(wind.GetPosition(), 0);
    }
}
