#include "audio/LPRSourceToSink.h"
#include "audio/LSPConvChannels.h"
#include "audio/LSoundTime.h"
#include "tests/unit/audio/AudioTest.h"

TEST(Sample, SurvivesTheWayThroughTheInternalScale) {
    for (int v = -32768; v <= 32767; ++v) ASSERT_EQ(ToPcm16(FromPcm16(static_cast<int16_t>(v))), v);
    for (int v = 0; v <= 255; ++v) ASSERT_EQ(ToPcm8(FromPcm8(static_cast<uint8_t>(v))), v);
    EXPECT_EQ(FromPcm16(-32768), -524288);
}

TEST(Sample, RoundsAndWrapsButNeverCracksAtTheTopOfEightBits) {
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

TEST(SoundSource, ReplacesImpossibleRateAndChannelsAndSaysSo) {
    TraceLog log;
    ArraySource source(0, 0, {});
    EXPECT_EQ(source.GetSampleRate(), 44100);
    EXPECT_EQ(source.GetChannels(), 1);
    EXPECT_TRUE(source.IsError());
    EXPECT_EQ(log.All(),
              "LSoundSourceBase::SetSampleRate SampleRate <= 0 ERROR\n"
              "LSoundSourceBase::SetChannels nChans == 0 ERROR\n");
}

TEST(SoundSource, HandleIsNeverEmpty) {
    LSoundSource handle = LSoundSource::Make<ArraySource>(8000, uint8_t{2}, Samples{1, 2});
    LSoundSource taken = std::move(handle);
    EXPECT_EQ(taken->GetSampleRate(), 8000);
    taken.Reset();
    for (const LSoundSource& empty : {handle, taken, LSoundSource()}) {
        EXPECT_EQ(empty->GetSampleRate(), 11025);
        EXPECT_EQ(empty->GetChannels(), 1);
        EXPECT_EQ(empty->GetLevel(), 0x200000);
        EXPECT_EQ(empty->GetLength(), 0);
        EXPECT_TRUE(empty->IsError());
    }
    int32_t sample = 5;
    handle->Read(&sample, 1);
    EXPECT_EQ(sample, 0);
}

TEST(SoundSink, EndsWithItsLastHandle) {
    struct Watched final : LSoundSinkBase {
        explicit Watched(bool& gone) : LSoundSinkBase(8000, 0), m_gone(gone) {}
        ~Watched() override { m_gone = true; }
        void Write(const int32_t*, int32_t) override {}
        bool& m_gone;
    };
    TraceLog log;
    bool gone = false;
    LSoundSink first = LSoundSink::Make<Watched>(gone);
    EXPECT_TRUE(first->IsError() && first->GetChannels() == 1);
    EXPECT_TRUE(log.Has("LSoundSinkBase::LSoundSinkBase nChans == 0"));
    LSoundSink second = first;
    LSoundSink third = std::move(first);
    EXPECT_FALSE(first);
    second.Reset();
    EXPECT_FALSE(gone);
    third = LSoundSink();
    EXPECT_TRUE(gone);
}

TEST(SoundTime, PrintsEveryForm) {
    using Form = LSoundTime::Form;
    static const struct {
        int32_t milliseconds;
        Form form;
        const char* text;
    } kCases[] = {
        {0, Form::Seconds, "0:00:00"},
        {3723456, Form::Seconds, "1:02:03"},
        {3723456, Form::Tenths, "1:02:03.4"},
        {3723456, Form::Hundredths, "1:02:03.45"},
        {3723056, Form::Milliseconds, "1:02:03.056"},
        {3723999, Form::ShortTenths, "1:02:03.9"},
        {59999, Form::MinutesSeconds, "00:59"},
        {3723456, Form::MinutesSeconds, "62:03"},
        {-1, Form::Milliseconds, "0:00:00.000"},
        {INT32_MAX, Form::Milliseconds, "596:31:23.647"},
    };
    for (const auto& c : kCases) {
        LSoundTime time;
        time.SetMilliseconds(c.milliseconds);
        EXPECT_EQ(time.Print(c.form), c.text);
    }
}

TEST(SoundTime, CountsSamplesOfAnyRate) {
    TraceLog log;
    LSoundTime time;
    EXPECT_TRUE(time.SetSamples(44099, 44100));
    EXPECT_EQ(time.Print(LSoundTime::Form::Milliseconds), "0:00:00.999");
    EXPECT_TRUE(time.SetSamples(INT32_MAX, 1));
    EXPECT_EQ(time.Hours(), 596523);
    EXPECT_FALSE(time.SetSamples(8000, 0));
    EXPECT_EQ(time.Hours(), 596523);
    EXPECT_TRUE(log.Has("LSoundTime::SetSamples samplerate <= 0"));
    // Four hours at the highest rate pass 32 bits on the way.
    EXPECT_EQ(MsToFrames(14400000, 48000), 691200000);
    EXPECT_EQ(FramesToMs(691200000, 48000), 14400000);
    EXPECT_EQ(FramesToMs(100, 0), 0);
}

TEST(ConvChannels, KeepsTheLeftChannelAndDoublesMono) {
    const LSoundSource stereo =
        LSoundSource::Make<ArraySource>(8000, uint8_t{2}, Samples{1, -1, 2, -2, 3, -3});
    LSoundSource mono = LSPConvChannels::OpenSource(stereo, 1);
    Samples got(4);
    mono->Seek(1);
    mono->Read(got.data(), 3);
    EXPECT_EQ(got, (Samples{2, 3, 0, 0}));
    EXPECT_EQ(mono->GetLength(), 3);
    EXPECT_EQ(mono->GetPosition(), 4);

    LSoundSource doubled =
        LSPConvChannels::OpenSource(LSoundSource::Make<ArraySource>(8000, uint8_t{1}, Samples{7, 8}), 2);
    doubled->Read(got.data(), 2);
    EXPECT_EQ(got, (Samples{7, 7, 8, 8}));
}

TEST(ConvChannels, IsBuiltOnlyWhereItIsNeededAndPossible) {
    TraceLog log;
    const LSoundSource six = LSoundSource::Make<ArraySource>(8000, uint8_t{6}, Samples(6));
    const LSoundSource broken = LSoundSource::Make<ArraySource>(8000, uint8_t{2}, Samples{}, 0, true);
    EXPECT_EQ(&*LSPConvChannels::OpenSource(six, 6), &*six);
    EXPECT_EQ(&*LSPConvChannels::OpenSource(broken, 1), &*broken);
    EXPECT_EQ(log.All(), "");
    EXPECT_TRUE(LSPConvChannels::OpenSource(six, 2)->IsError());
    EXPECT_TRUE(log.Has(
        "LSPConvChannels::OpenSource Multichannels (or 0) used when BUILD_SUPPORT_MULTICHANS is not set"));
}

static Samples Ramp(int32_t count) {
    Samples samples;
    for (int32_t i = 1; i <= count; ++i) samples.push_back(i);
    return samples;
}

TEST(SourceToSink, CopiesEveryFrameAndNoneMore) {
    for (int32_t length : {0, 1, 8191, 8192, 8193, 20000}) {
        Samples taken;
        NotingContext context;
        LPRSourceToSink process(LSoundSource::Make<ArraySource>(8000, uint8_t{1}, Ramp(length)),
                                LSoundSink::Make<CollectingSink>(8000, uint8_t{1}, taken));
        EXPECT_EQ(process.Process(context), ProcessResult::Done);
        EXPECT_EQ(taken, Ramp(length)) << length;
        EXPECT_EQ(context.status, "Please wait...");
        EXPECT_EQ(context.error, "");
        if (length == 20000) {
            EXPECT_EQ(context.progress, (std::vector<double>{8192 / 20000.0, 16384 / 20000.0}));
        }
    }
}

TEST(SourceToSink, StopsBetweenBlocksWhenAsked) {
    Samples taken;
    NotingContext context;
    context.cancelAfter = 1;
    LPRSourceToSink process(LSoundSource::Make<ArraySource>(8000, uint8_t{1}, Ramp(20000)),
                            LSoundSink::Make<CollectingSink>(8000, uint8_t{1}, taken));
    EXPECT_EQ(process.Process(context), ProcessResult::Stopped);
    EXPECT_EQ(taken.size(), 8192u);
}

TEST(SourceToSink, FailsVisiblyWhenItCannotDeliver) {
    static const struct {
        int rate, channels, level;
        bool error;
        int sinkRate, sinkChannels, sinkTakes;
        const char* trace;
    } kCases[] = {
        {8000, 1, kFullScale16, true, 8000, 1, 9000, "LPRSourceToSink::Process Source Error"},
        {8000, 1, kFullScale16, false, 8000, 0, 9000, "LPRSourceToSink::Process Sink Error"},
        {8000, 6, kFullScale16, false, 8000, 1, 9000, "LPRSourceToSink::Process no channel converter"},
        {8000, 1, kFullScale16, false, 8001, 1, 9000, "LPRSourceToSink::Process no rate converter"},
        {8000, 1, kFullScale16 + 1, false, 8000, 1, 9000, "LPRSourceToSink::Process no peak limiter"},
        {8000, 1, kFullScale16, false, 8000, 1, 8191, "LPRSourceToSink::Process Sink Error"},
        {8000, 1, kFullScale16, false, 8000, 1, 8999, "LPRSourceToSink::Process Sink Error"},
    };
    for (const auto& c : kCases) {
        TraceLog log;
        Samples taken;
        NotingContext context;
        LPRSourceToSink process(
            LSoundSource::Make<ArraySource>(c.rate, static_cast<uint8_t>(c.channels),
                                            Ramp(9000 * std::max(c.channels, 1)), c.level, c.error),
            LSoundSink::Make<CollectingSink>(c.sinkRate, static_cast<uint8_t>(c.sinkChannels), taken,
                                             c.sinkTakes));
        EXPECT_EQ(process.Process(context), ProcessResult::Failed) << c.trace;
        EXPECT_TRUE(log.Has(c.trace)) << log.All();
        EXPECT_NE(context.error, "") << c.trace;
    }
}
