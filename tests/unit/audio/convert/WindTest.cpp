#include "audio/convert/WindSource.h"
#include "audio/stream/LGain.h"
#include "tests/unit/audio/SoundKit.h"

// Sample i is 100 + i in all channels: what is heard tells where it comes from.
class CountingSource final : public LSoundSourceBase {
public:
    CountingSource(int32_t rate, uint8_t channels, int32_t length)
        : LSoundSourceBase(rate, channels, kFullScale16), m_length(length) {}
    void Read(int32_t* samples, int32_t frames) override {
        EXPECT_LE(frames, kBlockFrames);
        for (; frames > 0; --frames, ++m_position, samples += GetChannels())
            std::fill_n(samples, GetChannels(), m_position < m_length ? 100 + m_position : 0);
    }
    int32_t GetPosition() const override { return m_position; }
    int32_t GetLength() const override { return m_length; }
    void Seek(int32_t frame) override {
        EXPECT_TRUE(frame >= 0 && frame <= m_length) << frame;
        m_position = frame;
    }

private:
    int32_t m_length;
    int32_t m_position = 0;
};

static LSoundSource Counting(int32_t rate, int32_t frames, int32_t at, uint8_t channels = 1) {
    LSoundSource source = LSoundSource::Make<CountingSource>(rate, channels, frames);
    source->Seek(at);
    return source;
}

TEST(Fade, FollowsTheModelToTheBit) {
    const LFade fade(160, 1);
    for (size_t i = 0; i < fade.Gains().size(); ++i) {
        const double raised = 0.5 - 0.5 * std::cos(std::numbers::pi * (double(i) + 0.5) / 160);
        EXPECT_NEAR(fade.Gains()[i], raised * kUnityGain, 1) << i;
        EXPECT_EQ(fade.Gains()[i] + fade.Gains()[159 - i], kUnityGain);
    }
    const auto half = [](int64_t v, int64_t by) { return (v - ((v % by) + by) % by) / by; };  // rounds down
    const auto model = [&](int64_t value, int64_t gain) {
        const int64_t high = half(value, 4096), low = value - 4096 * high;
        const int64_t cross = high * (gain % 4096) + low * (gain / 4096);
        EXPECT_EQ(cross, static_cast<int32_t>(cross)) << value << " x " << gain;
        return high * (gain / 4096) + half(cross, 4096);
    };
    const Samples values = {0,     1,       -1,       4095,     4096,    -4096,
                            -4097, 0x7FFF0, -0x80000, 0x200000, 1 << 29, -(1 << 29)};
    Samples gains = fade.Gains();
    gains.insert(gains.end(), {0, 1, 0xFFF, 0x1000, kUnityGain - 1, kUnityGain});
    for (const int32_t value : values) {
        for (const int32_t gain : gains) {
            const int32_t product = TimesGain(value, gain);
            ASSERT_EQ(product, model(value, gain)) << value << " x " << gain;
            const double below = std::ldexp(double(value) * gain, -24) - product;
            ASSERT_TRUE(below >= 0 && below < 2) << value << " x " << gain;
        }
        EXPECT_EQ(TimesGain(value, kUnityGain), value);
    }
    Samples old = {1000, -0x80000, 5}, fresh = {7, 0x7FFF0, -5};
    LFade(1, 3).Cross(old.data(), fresh.data());  // half of each
    EXPECT_EQ(fresh, (Samples{503, -8, -1}));
}

TEST(Wind, SpeedRisesSmoothlyFromTheFirstToTheSecond) {
    constexpr int32_t kRate = 8000, kStart = 4'000'000, kStep = kRate / 10;
    for (const double sign : {1.0, -1.0}) {
        const LSoundSource source = Counting(kRate, 2 * kStart, kStart);
        const WindSource wind(source, sign * 1.5, sign * 8.0, 6000);
        double place = kStart - (sign < 0 ? 0.12 * kRate : 0.0);  // backwards the first snippet ends there
        double speed = 0;
        for (int32_t frame = 0; frame < 8 * kRate; ++frame) {
            if (frame % kStep == 0) {
                ASSERT_NEAR(wind.ToSourceFrame(frame), place, 1.5) << sign << " at " << frame;
            }
            const double x = std::min((frame + 0.5) / (6.0 * kRate), 1.0);
            speed = 1.5 + 6.5 * x * x * (3 - 2 * x);
            place += sign * speed;
        }
        EXPECT_EQ(speed, 8.0);
    }
}

// Reads a whole run. Outside the fades each frame is that of ToSourceFrame, backwards counted from the
// beginning of its snippet; the place heard never turns back; the last thing heard is the end or the start.
static void ExpectHeardWhereItSays(int32_t rate, uint8_t channels, double first, double last) {
    const int32_t frames = rate * 12, step = rate / 10, fade = rate / 50;
    const bool forward = first > 0;
    WindSource wind(Counting(rate, frames, forward ? 0 : frames, channels), first, last, 2000);
    const int32_t length = wind.GetLength();
    const Samples heard = ReadFrames(wind, length + 100);
    EXPECT_EQ(wind.GetPosition(), length + 100);
    for (int32_t i = 0, before = forward ? 0 : frames; i < length; ++i) {
        const int32_t place = wind.ToSourceFrame(i);
        ASSERT_TRUE(forward ? place >= before : place <= before) << "turns back at " << i;
        before = place;
        if (i % step < fade || i >= length - fade) continue;
        ASSERT_EQ(heard[static_cast<size_t>(i) * channels], 100 + place + (forward ? 0 : i % step)) << i;
        ASSERT_EQ(heard[static_cast<size_t>(i + 1) * channels - 1], heard[static_cast<size_t>(i) * channels]);
    }
    EXPECT_EQ(wind.ToSourceFrame(length - 1), forward ? frames - 1 : 0);
    EXPECT_EQ(wind.ToSourceFrame(length), forward ? frames : 0);
    EXPECT_EQ(wind.ToSourceFrame(length + 9), forward ? frames : 0);
    EXPECT_TRUE(std::all_of(heard.end() - 100 * channels, heard.end(), [](int32_t v) { return v == 0; }));
    EXPECT_LT(std::abs(heard[0]), 100) << "rises from silence";
    EXPECT_LT(std::abs(heard[static_cast<size_t>(length - 1) * channels]), 100) << "sinks into silence";
}

TEST(Wind, IsHeardWhereItSaysAndEndsExactly) {
    ExpectHeardWhereItSays(8000, 1, 1.5, 8);
    ExpectHeardWhereItSays(8000, 1, -1.5, -8);
    ExpectHeardWhereItSays(22050, 2, 4, 1);
    ExpectHeardWhereItSays(11025, 3, -8, -2);
    ExpectHeardWhereItSays(96000, 1, 1, 1);
}

TEST(Wind, ShortAndMissingMaterial) {
    // At 8000 Hz a snippet is 960 frames, a step at least 1200 of the source.
    static const struct {
        int32_t frames, at;
        double speed;
        int32_t length;
    } kCases[] = {
        {8000, 8000, 1.5, 0}, {8000, 0, -1.5, 0},  {0, 0, 1.5, 0},       {0, 0, -1.5, 0},
        {1, 0, 1.5, 1},       {1, 1, -1.5, 1},     {500, 200, 1.5, 300}, {500, 200, -1.5, 200},
        {960, 0, 1.5, 960},   {2000, 0, 1.5, 960}, {2160, 0, 1.5, 1760}, {2160, 2160, -1.5, 1760},
    };
    for (const auto& c : kCases) {
        WindSource wind(Counting(8000, c.frames, c.at), c.speed, c.speed, 0);
        ASSERT_EQ(wind.GetLength(), c.length) << c.frames << " from " << c.at;
        const Samples heard = ReadFrames(wind, c.length + 5);
        EXPECT_TRUE(std::all_of(heard.end() - 5, heard.end(), [](int32_t v) { return v == 0; }));
        if (c.length < 9) continue;
        const int32_t middle = c.length - std::min(c.length, 960) / 2;  // of the last snippet
        EXPECT_NEAR(heard[static_cast<size_t>(middle)],
                    100 + middle - c.length + (c.speed > 0 ? c.frames : std::min(c.length, 960)), 2);
    }
    EXPECT_TRUE(WindSource(LSoundSource(), 1.5, 8, 6000).IsError());
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
