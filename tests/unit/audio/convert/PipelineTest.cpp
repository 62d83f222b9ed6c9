#include "audio/convert/LPRSourceToSink.h"
#include "audio/convert/LRecordSpeed.h"
#include "audio/convert/LSPConvChannels.h"
#include "audio/convert/LSRCConvertRate.h"
#include "audio/convert/LSinkConvertRate.h"
#include "audio/convert/WindSource.h"
#include "audio/stream/LSoundTime.h"
#include "tests/unit/audio/SoundKit.h"

static LSoundSource Source(uint8_t channels, int32_t rate = 44100, bool error = false) {
    return LSoundSource::Make<ArraySource>(rate, channels, Ramp(9000 * channels), kFullScale16, error);
}

// Such a sink writes nothing.
TEST(Stages, SayWhyTheyRefuse) {
    static Samples taken;
    const auto mono = [] { return LSoundSink::Make<CollectingSink>(8000, uint8_t{1}, taken); };
    const auto stereo = [] { return LSoundSink::Make<CollectingSink>(8000, uint8_t{2}, taken); };
    const std::tuple<const char*, int32_t, LSoundSink> sinks[] = {
        {"LRecordSpeed::OpenSink Percent==0", 0, mono()},
        {"LRecordSpeed::OpenSink Percent==0", -100, mono()},
        {"LSinkConvertRateBase::LSinkConvertRateBase can only be used on mono streams", 200, stereo()},
        {"LSinkConvertRateBase::LSinkConvertRateBase rates too far apart", INT32_MAX, mono()},
    };
    for (const auto& [trace, percent, target] : sinks) {
        TraceLog log;
        const LSoundSink sink = LRecordSpeed::OpenSink(percent, target);
        EXPECT_TRUE(!sink || sink->IsError()) << trace;
        EXPECT_EQ(log.All(), std::string(trace) + "\n");
        if (sink) sink->Write(Samples(20).data(), 10);
        if (sink) sink->Truncate(0);
    }
    EXPECT_TRUE(taken.empty());
    EXPECT_TRUE(LSRCConvertRate::OpenSource(LSoundSource(), 8000)->IsError());
    EXPECT_TRUE(WindSource(LSoundSource(), 1.5, 8, 6000).IsError());
}

TEST(SoundTime, CountsAnyLengthAndCutsOffWhatItDoesNotShow) {
    using Form = LSoundTime::Form;
    static const std::tuple<int32_t, int32_t, Form, const char*> kCases[] = {
        {3723999, 1000, Form::Seconds, "1:02:03"},         {3723456, 1000, Form::Hundredths, "1:02:03.45"},
        {3723999, 1000, Form::ShortTenths, "1:02:03.9"},   {3723456, 1000, Form::MinutesSeconds, "62:03"},
        {44099, 44100, Form::Milliseconds, "0:00:00.999"}, {-1, 1000, Form::Tenths, "0:00:00.0"},
        {INT32_MAX, 1, Form::Seconds, "596523:14:07"},     {8000, 0, Form::Seconds, "0:00:00"},
    };
    for (const auto& [samples, rate, form, text] : kCases) {
        LSoundTime time;
        EXPECT_EQ(time.SetSamples(samples, rate), rate > 0);
        EXPECT_EQ(time.Print(form), text);
    }
    // Four hours at the highest rate pass 32 bits on the way.
    EXPECT_EQ(MsToFrames(14400000, 48000), 691200000);
    EXPECT_EQ(FramesToMs(691200000, 48000), 14400000);
}

TEST(ConvChannels, KeepsTheLeftChannelAndDoublesMono) {
    static const std::tuple<uint8_t, uint8_t, Samples, Samples> kCases[] = {
        {2, 1, {1, -1, 2, -2, 3, -3}, {2, 3, 0, 0}},
        {1, 2, {6, 7, 8}, {7, 7, 8, 8}},
        {2, 2, {1, -1, 2, -2, 3, -3}, {2, -2, 3, -3}},
    };
    for (const auto& [from, to, in, out] : kCases) {
        LSoundSource source =
            LSPConvChannels::OpenSource(LSoundSource::Make<ArraySource>(8000, from, in), to);
        source->Seek(1);
        EXPECT_EQ(ReadFrames(*source, 4 / to), out);
        EXPECT_EQ(source->GetPosition(), 1 + 4 / to);
        EXPECT_EQ(source->GetLength(), 3);
    }
}

static ProcessResult Copy(const LSoundSource& source, Samples& taken, NotingContext& context) {
    return LPRSourceToSink(source, LSoundSink::Make<CollectingSink>(8000, uint8_t{1}, taken))
        .Process(context);
}

TEST(SourceToSink, CopiesEveryFrameAndNoneMoreAndStopsBetweenBlocks) {
    for (int32_t length : {0, 1, 8191, 8192, 8193, 20000}) {
        Samples taken;
        NotingContext context;
        const LSoundSource source = LSoundSource::Make<ArraySource>(8000, uint8_t{1}, Ramp(length));
        EXPECT_EQ(Copy(source, taken, context), ProcessResult::Done);
        EXPECT_EQ(taken, Ramp(length)) << length;
        EXPECT_TRUE(context.errors.empty());
        if (length < 20000) continue;
        EXPECT_EQ(context.progress, (std::vector<double>{8192 / 20000.0, 16384 / 20000.0}));
        source->Seek(0);
        taken.clear();
        context.cancelAfter = 1;
        EXPECT_EQ(Copy(source, taken, context), ProcessResult::Stopped);
        EXPECT_EQ(taken, Ramp(8192));
    }
}

TEST(SourceToSink, TakesAGuessedLengthForNoMoreThanThat) {
    for (const int32_t guess : {0, 100, 19999, 20000, 20001, INT32_MAX}) {
        for (const int32_t level : {kFullScale16, kFullScale16 + 1}) {  // without a limiter and with one
            Samples taken;
            NotingContext context;
            const LSoundSource source = LSoundSource::Make<ArraySource>(8000, uint8_t{1}, Ramp(20000), level);
            static_cast<ArraySource&>(*source).guess = guess;
            EXPECT_EQ(Copy(source, taken, context), ProcessResult::Done);
            EXPECT_EQ(taken, Ramp(20000)) << guess << ' ' << level;
            for (const double progress : context.progress) EXPECT_LE(progress, 1.0);
        }
    }
}

TEST(SourceToSink, FailsVisiblyWhenItCannotDeliver) {
    static const struct {
        uint8_t channels;
        bool error;
        int32_t sinkRate;
        uint8_t sinkChannels;
        int32_t sinkTakes;
        const char* trace;
    } kCases[] = {
        {1, true, 8000, 1, 9000, "LPRSourceToSink::Process Source Error"},
        {1, false, 8000, 0, 9000, "LPRSourceToSink::Process Sink Error"},
        {6, false, 8000, 1, 9000, "LPRSourceToSink::Process no channel converter"},
        {1, false, 0, 1, 9000, "LPRSourceToSink::Process no rate converter"},
        {1, false, 1, 1, 9000, "LPRSourceToSink::Process no rate converter"},
        {3, false, 16000, 3, 9000, "LPRSourceToSink::Process no rate converter"},
        {1, false, 8000, 1, 8191, "LPRSourceToSink::Process Sink Error"},
        {1, false, 8000, 1, 8999, "LPRSourceToSink::Process Sink Error"},
    };
    for (const auto& c : kCases) {
        TraceLog log;
        Samples taken;
        NotingContext context;
        LPRSourceToSink process(
            Source(c.channels, 8000, c.error),
            LSoundSink::Make<CollectingSink>(c.sinkRate, c.sinkChannels, taken, c.sinkTakes));
        EXPECT_EQ(process.Process(context), ProcessResult::Failed) << c.trace;
        EXPECT_TRUE(log.Has(c.trace)) << log.All();
        EXPECT_EQ(context.errors.size(), 1u) << c.trace;
    }
}
