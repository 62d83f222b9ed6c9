#include <numeric>

#include "audio/convert/LPRSourceToSink.h"
#include "audio/convert/LSPConvChannels.h"
#include "audio/stream/LSoundTime.h"
#include "tests/unit/audio/AudioTest.h"

TEST(Sample, SurvivesTheInternalScaleRoundedAndNeverCracksAtTheTopOfEightBits) {
    for (int v = -32768; v <= 32767; ++v) ASSERT_EQ(ToPcm16(FromPcm16(static_cast<int16_t>(v))), v);
    for (int v = 0; v <= 255; ++v) ASSERT_EQ(ToPcm8(FromPcm8(static_cast<uint8_t>(v))), v);
    EXPECT_EQ(FromPcm16(-32768), -524288);
    static const struct {
        int32_t sample;
        int16_t pcm16;
        uint8_t pcm8;
    } kCases[] = {
        {7, 0, 128},           {8, 1, 128},           {-8, 0, 128},         {-9, -1, 128},
        {2047, 128, 128},      {2048, 128, 129},      {-2049, -128, 127},   {0x7F7FF, 32640, 255},
        {0x7F800, 32640, 255}, {0x7FFF0, 32767, 255}, {0x80000, -32768, 0},
    };
    for (const auto& c : kCases) {
        EXPECT_EQ(ToPcm16(c.sample), c.pcm16) << c.sample;
        EXPECT_EQ(ToPcm8(c.sample), c.pcm8) << c.sample;
    }
}

TEST(SoundSource, IsSilentAndInErrorRatherThanEmptyOrImpossible) {
    TraceLog log;
    const ArraySource impossible(0, 0, {});
    EXPECT_TRUE(impossible.IsError() && impossible.GetSampleRate() == 44100 && impossible.GetChannels() == 1);
    EXPECT_EQ(log.All(),
              "LSoundSourceBase::SetSampleRate SampleRate <= 0 ERROR\n"
              "LSoundSourceBase::SetChannels nChans == 0 ERROR\n");

    LSoundSource handle = LSoundSource::Make<ArraySource>(8000, uint8_t{2}, Samples{1, 2});
    LSoundSource taken = std::move(handle);
    EXPECT_EQ(taken->GetSampleRate(), 8000);
    taken.Reset();
    for (const LSoundSource& empty : {handle, taken, LSoundSource()}) {
        int32_t sample = 5;
        empty->Read(&sample, 1);
        EXPECT_TRUE(empty->IsError() && sample == 0 && empty->GetLength() == 0);
        EXPECT_EQ(empty->GetSampleRate(), 11025);
        EXPECT_EQ(empty->GetLevel(), 0x200000);
    }
}

TEST(SoundTime, CountsAnyLengthAndCutsOffWhatItDoesNotShow) {
    using Form = LSoundTime::Form;
    static const struct {
        int32_t samples, rate;
        Form form;
        const char* text;
    } kCases[] = {
        {3723999, 1000, Form::Seconds, "1:02:03"},         {3723456, 1000, Form::Hundredths, "1:02:03.45"},
        {3723999, 1000, Form::ShortTenths, "1:02:03.9"},   {3723456, 1000, Form::MinutesSeconds, "62:03"},
        {44099, 44100, Form::Milliseconds, "0:00:00.999"}, {-1, 1000, Form::Tenths, "0:00:00.0"},
        {INT32_MAX, 1, Form::Seconds, "596523:14:07"},     {8000, 0, Form::Seconds, "0:00:00"},
    };
    for (const auto& c : kCases) {
        LSoundTime time;
        EXPECT_EQ(time.SetSamples(c.samples, c.rate), c.rate > 0);
        EXPECT_EQ(time.Print(c.form), c.text);
    }
    // Four hours at the highest rate pass 32 bits on the way.
    EXPECT_EQ(MsToFrames(14400000, 48000), 691200000);
    EXPECT_EQ(FramesToMs(691200000, 48000), 14400000);
}

TEST(ConvChannels, KeepsTheLeftChannelAndDoublesMono) {
    static const struct {
        uint8_t from, to;
        Samples in, out;
    } kCases[] = {
        {2, 1, {1, -1, 2, -2, 3, -3}, {2, 3, 0, 0}},
        {1, 2, {6, 7, 8}, {7, 7, 8, 8}},
        {2, 2, {1, -1, 2, -2, 3, -3}, {2, -2, 3, -3}},
    };
    for (const auto& c : kCases) {
        LSoundSource source =
            LSPConvChannels::OpenSource(LSoundSource::Make<ArraySource>(8000, c.from, c.in), c.to);
        Samples out(4, 99);
        source->Seek(1);
        source->Read(out.data(), 4 / c.to);
        EXPECT_EQ(out, c.out);
        EXPECT_EQ(source->GetPosition(), 1 + 4 / c.to);
        EXPECT_EQ(source->GetLength(), 3);
    }
    TraceLog log;
    const LSoundSource six = LSoundSource::Make<ArraySource>(8000, uint8_t{6}, Samples(6));
    EXPECT_TRUE(LSPConvChannels::OpenSource(six, 2)->IsError());
    EXPECT_TRUE(log.Has(
        "LSPConvChannels::OpenSource Multichannels (or 0) used when BUILD_SUPPORT_MULTICHANS is not set"));
}

static Samples Ramp(int32_t count) {
    Samples samples(static_cast<size_t>(count));
    std::iota(samples.begin(), samples.end(), 1);
    return samples;
}

static ProcessResult CopyRamp(int32_t length, Samples& taken, NotingContext& context) {
    return LPRSourceToSink(LSoundSource::Make<ArraySource>(8000, uint8_t{1}, Ramp(length)),
                           LSoundSink::Make<CollectingSink>(8000, uint8_t{1}, taken))
        .Process(context);
}

TEST(SourceToSink, CopiesEveryFrameAndNoneMoreAndStopsBetweenBlocks) {
    for (int32_t length : {0, 1, 8191, 8192, 8193, 20000}) {
        Samples taken;
        NotingContext context;
        EXPECT_EQ(CopyRamp(length, taken, context), ProcessResult::Done);
        EXPECT_EQ(taken, Ramp(length)) << length;
        EXPECT_TRUE(context.errors.empty());
        if (length == 20000) {
            EXPECT_EQ(context.progress, (std::vector<double>{8192 / 20000.0, 16384 / 20000.0}));
        }
    }
    Samples taken;
    NotingContext context;
    context.cancelAfter = 1;
    EXPECT_EQ(CopyRamp(20000, taken, context), ProcessResult::Stopped);
    EXPECT_EQ(taken, Ramp(8192));
}

// Guesses its length until it has met its end, like a compressed file with a wrong byte rate.
class GuessingSource final : public LSoundSourceBase {
public:
    GuessingSource(Samples samples, int32_t guess, int32_t level)
        : LSoundSourceBase(8000, 1, level), m_guess(guess), m_inner(8000, 1, std::move(samples)) {}
    void Read(int32_t* samples, int32_t frames) override { m_inner.Read(samples, frames); }
    int32_t GetPosition() const override { return m_inner.GetPosition(); }
    int32_t GetLength() const override {
        if (GetPosition() >= m_inner.GetLength()) return m_inner.GetLength();
        return std::max(m_guess, GetPosition() + 1);
    }
    void Seek(int32_t frame) override { m_inner.Seek(frame); }

private:
    int32_t m_guess;
    ArraySource m_inner;
};

TEST(SourceToSink, TakesAGuessedLengthForNoMoreThanThatAndLimitsWhatMayBeLoud) {
    for (const int32_t guess : {0, 100, 19999, 20000, 20001, INT32_MAX}) {
        for (const int32_t level : {kFullScale16, kFullScale16 + 1}) {
            Samples taken;
            NotingContext context;
            LPRSourceToSink process(LSoundSource::Make<GuessingSource>(Ramp(20000), guess, level),
                                    LSoundSink::Make<CollectingSink>(8000, uint8_t{1}, taken));
            EXPECT_EQ(process.Process(context), ProcessResult::Done);
            EXPECT_EQ(taken, Ramp(20000)) << guess << ' ' << level;
            for (const double progress : context.progress) EXPECT_LE(progress, 1.0);
        }
    }
    Samples taken;
    NotingContext context;
    LPRSourceToSink loud(LSoundSource::Make<ArraySource>(8000, uint8_t{1}, Samples(9000, 0x100000), 0x100000),
                         LSoundSink::Make<CollectingSink>(8000, uint8_t{1}, taken));
    EXPECT_EQ(loud.Process(context), ProcessResult::Done);
    EXPECT_EQ(taken.size(), 9000u);
    EXPECT_LE(*std::max_element(taken.begin(), taken.end()), kFullScale16);
}

TEST(SourceToSink, FailsVisiblyWhenItCannotDeliver) {
    static const struct {
        int channels, level;
        bool error;
        int sinkRate, sinkChannels, sinkTakes;
        const char* trace;
    } kCases[] = {
        {1, kFullScale16, true, 8000, 1, 9000, "LPRSourceToSink::Process Source Error"},
        {1, kFullScale16, false, 8000, 0, 9000, "LPRSourceToSink::Process Sink Error"},
        {6, kFullScale16, false, 8000, 1, 9000, "LPRSourceToSink::Process no channel converter"},
        {1, kFullScale16, false, 0, 1, 9000, "LPRSourceToSink::Process no rate converter"},
        {1, kFullScale16, false, 8000, 1, 8191, "LPRSourceToSink::Process Sink Error"},
        {1, kFullScale16, false, 8000, 1, 8999, "LPRSourceToSink::Process Sink Error"},
    };
    for (const auto& c : kCases) {
        TraceLog log;
        Samples taken;
        NotingContext context;
        LPRSourceToSink process(LSoundSource::Make<ArraySource>(8000, static_cast<uint8_t>(c.channels),
                                                                Ramp(9000 * c.channels), c.level, c.error),
                                LSoundSink::Make<CollectingSink>(
                                    c.sinkRate, static_cast<uint8_t>(c.sinkChannels), taken, c.sinkTakes));
        EXPECT_EQ(process.Process(context), ProcessResult::Failed) << c.trace;
        EXPECT_TRUE(log.Has(c.trace)) << log.All();
        EXPECT_EQ(context.errors.size(), 1u) << c.trace;
    }
}
