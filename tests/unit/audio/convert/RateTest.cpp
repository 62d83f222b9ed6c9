#include "audio/convert/LPRSourceToSink.h"
#include "audio/convert/LRecordSpeed.h"
#include "audio/convert/LSRCConvertRate.h"
#include "audio/convert/LSinkConvertRate.h"
#include "tests/unit/audio/SoundKit.h"

static LSoundSource Convert(const Samples& samples, Rates rates, uint8_t channels = 1) {
    return LSRCConvertRate::OpenSource(LSoundSource::Make<ArraySource>(rates.in, channels, samples),
                                       rates.out);
}

// What comes out of a sink that converts, written in pieces.
static Samples ThroughSink(Rates rates, const Samples& in, size_t piece = 8192) {
    Samples taken;
    LSoundSink sink = LSinkConvertRateBase::OpenSink(
        LSoundSink::Make<CollectingSink>(rates.out, uint8_t{1}, taken), rates.in);
    EXPECT_FALSE(sink->IsError());
    for (size_t i = 0; i < in.size(); i += piece)
        sink->Write(in.data() + i, static_cast<int32_t>(std::min(piece, in.size() - i)));
    EXPECT_EQ(sink->GetFrames(), static_cast<int32_t>(in.size()));
    sink.Reset();
    return taken;
}

// Each sample of source and sink, in every build alike.
TEST(ConvertRate, DeliversItsSamplesAlsoInPiecesAndFromASink) {
    static const char* const kDigests[][2] = {
        {"6d5142c8", "be974611"}, {"2460d011", "9fa61124"}, {"46a0d2ef", "cb3b1d08"},
        {"8702a059", "4eb94cc4"}, {"6cbbf435", "15516785"}, {"7de98d0f", "ca33df58"},
        {"a0072f70", "f95a90e9"}, {"f48723dc", "589fa586"}, {"5442473d", "547183af"}};
    static_assert(std::size(kDigests) == std::size(kConvertedRates));
    const Samples in = Noise(20000, 0x90000);
    for (size_t i = 0; i < std::size(kDigests); ++i) {
        const Rates rates = kConvertedRates[i];
        const LSoundSource source = Convert(in, rates);
        EXPECT_EQ(Digest(ReadFrames(*source, source->GetLength() + 300)), kDigests[i][0]) << rates.in;
        const Samples written = ThroughSink(rates, in);
        EXPECT_EQ(Digest(written), kDigests[i][1]) << rates.in;
        EXPECT_EQ(ThroughSink(rates, in, 441), written) << rates.in;
    }
    EXPECT_EQ(ThroughSink({44100, 8000}, {}), Samples());
    EXPECT_EQ(ThroughSink({8000, 8000}, {1, 2, 3}), (Samples{1, 2, 3}));
}

TEST(ConvertRate, DeliversTheSameAfterASeekAndInEachChannel) {
    const auto interleave = [](const Samples& left, const Samples& right) {
        Samples both;
        for (size_t i = 0; i < left.size(); ++i) both.insert(both.end(), {left[i], right[i]});
        return both;
    };
    const Samples in = Noise(3000, 0x90000), other = Noise(3000, 0x90000, 2);
    for (const Rates& rates : kConvertedRates) {
        const LSoundSource source = Convert(in, rates), stereo = Convert(interleave(in, other), rates, 2);
        const int32_t length = source->GetLength();
        const Samples left = ReadFrames(*source, length + 300);
        const Samples whole = interleave(left, ReadFrames(*Convert(other, rates), length + 300));
        EXPECT_EQ(ReadFrames(*stereo, length + 300, 977), whole) << rates.in << " " << rates.out;
        EXPECT_EQ(stereo->GetPosition(), length + 300);
        for (const int32_t frame : {0, 1, 5, 57, length / 2, length - 1, length, length + 9, -3}) {
            stereo->Seek(frame);
            const int32_t from = std::clamp(frame, 0, length);
            EXPECT_EQ(stereo->GetPosition(), from);
            EXPECT_EQ(ReadFrames(*stereo, 70),
                      Samples(&whole[2 * size_t(from)], &whole[2 * size_t(from) + 140]))
                << rates.in << " " << rates.out << " from " << frame;
        }
    }
}

TEST(ConvertRate, KeepsATonesLevelAndItsPlaceInTimeAndNoneThatWouldFoldBack) {
    for (const Rates& rates : {Rates{44100, 8000}, {8000, 44100}, {22050, 8000}, {8000, 11025}}) {
        const Samples in = Tone(static_cast<size_t>(rates.in), 400, rates.in, 0x40000);
        const Samples out = ReadFrames(*Convert(in, rates), rates.out);
        const Samples wanted = Tone(out.size(), 400, rates.out, 0x40000);
        EXPECT_NEAR(ToneDb(out, 400, rates.out, 0x40000), 0.0, 0.05) << rates.in;
        for (size_t i = 100; i + 100 < out.size(); ++i) ASSERT_NEAR(out[i], wanted[i], 0x40000 * 0.006) << i;
    }
    for (const int32_t hz : {5000, 6500, 15000}) {
        const Samples out = ReadFrames(*Convert(Tone(44100, hz, 44100, 0x40000), {44100, 8000}), 8000);
        EXPECT_LT(LoudnessAt(out, 100, 7800), 0x40000 * 0.0015) << hz << " Hz";
    }
    const Samples steady = ReadFrames(*Convert(Samples(8000, 0x7FFF0), {44100, 8000}), 1000);
    EXPECT_EQ(Samples(steady.begin() + 10, steady.end()), Samples(990, 0x7FFF0));
}

TEST(ConvertRate, KeepsAnHourAnHourAndLongerOnesToo) {
    static const std::tuple<Rates, int32_t, int32_t> kCases[] = {
        {{44100, 8000}, 158760000, 28800000},
        {{8000, 44100}, 28800000, 158760000},
        {{48000, 8000}, 4 * 172800000, 4 * 28800000},
        {{8000, 48000}, 432000000, INT32_MAX},
    };
    for (const auto& [rates, frames, length] : kCases) {
        const LSoundSource silence = LSoundSource::Make<ArraySource>(rates.in, uint8_t{1}, Samples());
        static_cast<ArraySource&>(*silence).present = frames;
        const LSoundSource source = LSRCConvertRate::OpenSource(silence, rates.out);
        EXPECT_EQ(source->GetLength(), length);
        if (length == INT32_MAX) continue;
        source->Seek(length - 10000);
        EXPECT_EQ(source->GetPosition(), length - 10000);
        ReadFrames(*source, 10000);
        EXPECT_EQ(source->GetPosition(), length);
    }
}

// A tone of twice full scale comes out turned down, not cut off at full scale: the overtone is what cutting
// adds. Where the filter overshoots what was not too loud, that is turned down too.
TEST(ConvertRate, StandsBetweenLimiters) {
    const auto converted = [](const Samples& in, int32_t level) {
        Samples taken;
        NotingContext context;
        LPRSourceToSink process(LSoundSource::Make<ArraySource>(44100, uint8_t{1}, in, level),
                                LSoundSink::Make<CollectingSink>(8000, uint8_t{1}, taken));
        EXPECT_EQ(process.Process(context), ProcessResult::Done);
        EXPECT_LE(*std::max_element(taken.begin(), taken.end()), kFullScale16);
        return taken;
    };
    const Samples tone = converted(Tone(44100, 500, 44100, 0x100000), 0x100000);
    EXPECT_NEAR(ToneDb(tone, 500, 8000, 0x7FFF0), 0.0, 0.2);
    EXPECT_LT(ToneDb(tone, 1500, 8000, 0x7FFF0), -50.0);
    Samples square = Tone(44100, 500, 44100, 1000);
    for (int32_t& v : square) v = v < 0 ? -kFullScale16 : kFullScale16;
    converted(square, kFullScale16);
}

TEST(ConvertRate, ReadsAGrowingSourceOnlyAsFarAsItGoes) {
    const Samples in = Noise(9000, 0x40000);
    for (const Rates& rates : {Rates{44100, 8000}, {8000, 44100}}) {
        const LSoundSource source = Convert(in, rates);
        const Samples whole = ReadFrames(*source, source->GetLength());
        const auto open = [&](const LSoundSource& s) { return LSRCConvertRate::OpenSource(s, rates.out); };
        for (const int32_t growth : {1, 20, 81, 4000})
            EXPECT_EQ(ReadWhileItGrows(in, rates.in, kFullScale16, open, growth), whole);
    }
}

// Speech, silence that is cut off again, speech: both stand behind each other as if there had been no silence
// between them, but for the frames that the filter reaches across the cut. What was there before stays.
TEST(SinkConvertRate, CutsWhatItsInputCutsAndNothingElse) {
    const Samples speech = Noise(9001, 0x7FFF0), more = Noise(4000, 0x7FFF0, 2);
    for (const Rates& rates : kConvertedRates) {
        const LSincFilter filter(rates.in, rates.out, 15);
        const Samples joined = ThroughSink(rates, speech + more);
        for (const int32_t silence : {0, 1, 14, 15, 9000, 25000}) {
            Samples taken(50, 77);
            {
                LSoundSink file = LSoundSink::Make<CollectingSink>(rates.out, uint8_t{1}, taken);
                static_cast<CollectingSink&>(*file).StartAt(50);
                const LSoundSink sink = LSinkConvertRateBase::OpenSink(file, rates.in);
                const int32_t start = sink->GetFrames();
                EXPECT_EQ(start, filter.ToInput(50));
                sink->Write(more.data(), 4000);
                sink->Truncate(-1);
                sink->Write(speech.data(), kBlockFrames);
                sink->Write(speech.data() + kBlockFrames, 9001 - kBlockFrames);
                for (int32_t i = 0; i < silence; i += 5000)
                    sink->Write(Samples(5000).data(), std::min(silence - i, 5000));
                sink->Truncate(start + 9001 + silence + 1);  // ignored
                sink->Truncate(start + 9001);
                EXPECT_EQ(sink->GetFrames(), start + 9001);
                sink->Write(more.data(), 4000);
            }
            ASSERT_EQ(taken.size(), joined.size() + 50) << rates.in << " " << silence;
            EXPECT_EQ(Samples(taken.begin(), taken.begin() + 50), Samples(50, 77));
            for (int32_t i = 0; i < static_cast<int32_t>(joined.size()); ++i) {
                const bool isNearCut = std::abs(filter.ToInput(i) - 9001) <= 8;
                if (isNearCut && silence > 0) continue;
                ASSERT_EQ(taken[static_cast<size_t>(i) + 50], joined[static_cast<size_t>(i)])
                    << rates.in << " " << silence << " at " << i;
            }
        }
    }
}

TEST(RecordSpeed, LosesNothingWhereTheTargetCannotBeCut) {
    for (int32_t rate : {8000, 11025}) {  // with a converter between them, and without
        Samples taken;
        LSoundSink file = LSoundSink::Make<CollectingSink>(rate, uint8_t{1}, taken);
        static_cast<CollectingSink&>(*file).cuts = false;
        LSoundSink sink = LRecordSpeed::OpenSink(200, file);
        for (int i = 0; i < 4; ++i) {
            for (int j = 0; j < 4; ++j) sink->Write(Noise(8000, 0x7FFF0).data(), 8000);
            sink->Truncate(sink->GetFrames() - 30000);
        }
        EXPECT_EQ(sink->GetFrames(), 4 * 32000);
        sink.Reset();
        EXPECT_EQ(taken.size(), static_cast<size_t>(int64_t{4} * 32000 * rate / 11025 + 1 - rate / 11025));
    }
}

// The filter overshoots at the steps of a tape that plays too loud.
TEST(RecordSpeed, DoesNotCrackWhereTheTapeIsTooLoud) {
    Samples taken, tape(kBlockFrames);
    for (size_t i = 0; i < tape.size(); ++i) tape[i] = i / 37 % 2 == 0 ? -0x80000 : 0x7FFF7;
    LRecordSpeed::OpenSink(200, LSoundSink::Make<CollectingSink>(8000, uint8_t{1}, taken))
        ->Write(tape.data(), kBlockFrames);
    EXPECT_EQ(std::ranges::max(taken), 0x7FFF7);
    EXPECT_EQ(std::ranges::min(taken), -0x80000);
}

TEST(RecordSpeed, StoresFastAudioAtItsNormalSpeed) {
    static const std::tuple<int32_t, int32_t, int32_t> kCases[] = {
        {100, 8000, 8000}, {200, 8000, 22050}, {50, 11025, 22050}, {200, 11026, 44100}};
    for (const auto& [percent, rate, captureRate] : kCases) {
        Samples taken;
        LSoundSink sink =
            LRecordSpeed::OpenSink(percent, LSoundSink::Make<CollectingSink>(rate, uint8_t{1}, taken));
        ASSERT_TRUE(sink && !sink->IsError());
        EXPECT_EQ(sink->GetSampleRate(), captureRate);
        // A second of a tone of 400 Hz, played at that speed.
        const int32_t frames = captureRate * 100 / percent;
        const Samples tone = Tone(static_cast<size_t>(frames), 4.0 * percent, captureRate, 0x40000);
        for (int32_t i = 0; i < frames; i += kBlockFrames)
            sink->Write(tone.data() + i, std::min(frames - i, kBlockFrames));
        sink.Reset();
        EXPECT_NEAR(static_cast<double>(taken.size()), rate, 2.0);
        EXPECT_NEAR(ToneDb(taken, 400, rate, 0x40000), 0.0, 0.05) << percent << " " << rate;
    }
}
