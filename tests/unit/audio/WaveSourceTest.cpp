#include <numeric>

#include "audio/LPRSourceToSink.h"
#include "audio/LRewriteWave.h"
#include "audio/LSNKPCMFile.h"
#include "audio/LWaveFile.h"
#include "tests/unit/audio/AudioTest.h"

static const Bytes kFmt16 = Chunk("fmt ", FormatRecord(1, 1, 8000, 16));
static const Bytes kData = Chunk("data", Hex("0100 0200 0300"));
static const Bytes kFrames = Hex("0100 0200 0300");
static const Bytes kOpenData = Text("data") + Little(0xFFFFFFFF);

static LSoundSource OpenBytes(const Bytes& bytes) {
    return LWaveFile::OpenSource(std::make_unique<LMemoryFile>(bytes));
}

static Samples ReadAll(LSoundSource source, int32_t frames) {
    Samples samples(static_cast<size_t>(frames) * source->GetChannels(), 99);
    source->Read(samples.data(), frames);
    return samples;
}

TEST(WaveSource, ReadsSamplesAndThenSilence) {
    LSoundSource mono = OpenBytes(WaveFile(kFmt16 + Chunk("data", Hex("0100 FFFF 0080"))));
    EXPECT_EQ(mono->GetLevel(), 0x7FFF0);
    EXPECT_EQ(mono->GetLength(), 3);
    EXPECT_EQ(ReadAll(mono, 2), (Samples{16, -16}));
    EXPECT_EQ(ReadAll(mono, 3), (Samples{-524288, 0, 0}));
    EXPECT_EQ(mono->GetPosition(), 5);

    LSoundSource stereo = OpenBytes(
        WaveFile(Chunk("fmt ", FormatRecord(1, 2, 11025, 8)) + Chunk("data", Hex("00 80 FF 81 77"))));
    EXPECT_EQ(stereo->GetSampleRate(), 11025);
    EXPECT_EQ(stereo->GetLength(), 2) << "half a frame does not count";
    EXPECT_EQ(ReadAll(stereo, 3), (Samples{-524288, 0, 0x7F000, 4096, 0, 0}));
}

TEST(WaveSource, SeeksWithSilenceBeforeTheStart) {
    LSoundSource source = OpenBytes(WaveFile(kFmt16 + kData + Chunk("LIST", Bytes(20, 0x77))));
    static const struct {
        int32_t to;
        Samples read;
    } kCases[] = {
        {1, {32, 48, 0, 0, 0, 0, 0}}, {0, {16, 32, 48, 0, 0, 0, 0}}, {-2, {0, 0, 16, 32, 48, 0, 0}},
        {-9, {0, 0, 0, 0, 0, 0, 0}},  {3, {0, 0, 0, 0, 0, 0, 0}},    {99, {0, 0, 0, 0, 0, 0, 0}},
    };
    for (const auto& c : kCases) {
        source->Seek(c.to);
        EXPECT_EQ(ReadAll(source, 7), c.read) << c.to;
        EXPECT_EQ(source->GetPosition(), c.to + 7);
    }
    source->Seek(INT32_MAX);
    ReadAll(source, 4);
    EXPECT_EQ(source->GetPosition(), INT32_MAX);
    EXPECT_EQ(source->GetLength(), 3);
}

TEST(WaveSource, FindsTheDataInEveryValidFile) {
    const Bytes list = Chunk("LIST", Hex("01 02 03"));  // odd: padded
    const Bytes extended = Chunk("fmt ", FormatRecord(1, 1, 8000, 16, 40));
    Bytes longest = FormatRecord(1, 1, 8000, 16, 8192);
    static const struct {
        const char* what;
        Bytes bytes;
    } kCases[] = {
        {"16-byte fmt", WaveFile(Chunk("fmt ", FormatRecord(1, 1, 8000, 16, 16)) + kData)},
        {"fmt with half of the last field",
         WaveFile(Chunk("fmt ", FormatRecord(1, 1, 8000, 16, 17)) + kData)},
        {"fmt with extra bytes", WaveFile(extended + kData)},
        {"longest fmt", WaveFile(Chunk("fmt ", longest) + kData)},
        {"12 bits", WaveFile(Chunk("fmt ", FormatRecord(1, 1, 8000, 12)) + kData)},
        {"chunks around", WaveFile(list + kFmt16 + list + kData + list)},
        {"a foreign chunk in front", Chunk("ABCD", Hex("01 02 03 04 05 06")) + WaveFile(kFmt16 + kData)},
        {"still being written", WaveFile(kFmt16 + kOpenData + kFrames)},
        {"cut off in a frame", WaveFile(kFmt16 + kOpenData + kFrames + Hex("44"))},
        {"shorter than it says", WaveFile(kFmt16 + Text("data") + Little(0x7FFFFFFF) + kFrames)},
    };
    for (const auto& c : kCases) {
        LSoundSource source = OpenBytes(c.bytes);
        EXPECT_FALSE(source->IsError()) << c.what;
        EXPECT_EQ(source->GetLength(), 3) << c.what;
        EXPECT_EQ(ReadAll(source, 4), (Samples{16, 32, 48, 0})) << c.what;
    }
}

TEST(WaveSource, SaysWhyItRefusesAFile) {
    const Bytes negative = Text("LIST") + Little(0x80000000);
    static const struct {
        const char* trace;
        Bytes bytes;
    } kCases[] = {
        {"LWaveFile::OpenSource No RIFF WAVE chunk found", {}},
        {"LWaveFile::OpenSource No RIFF WAVE chunk found", Chunk("ABCD", Bytes(100))},
        {"LWaveFile::OpenSource No RIFF WAVE chunk found",
         Text("RIFF") + Little(100) + Text("AVI ") + Bytes(99)},
        {"LWaveFile::OpenSource chunk too short!", Chunk("ABCD", Bytes(4)) + WaveFile(kFmt16 + kData)},
        {"LWaveFile::OpenSource chunk too short!", Text("ABCD") + Little(0xFFFFFFFF) + Bytes(99)},
        {"LWaveFile::OpenSource fmt subchunk not found!", WaveFile({})},
        {"LWaveFile::OpenSource fmt subchunk not found!", WaveFile(Chunk("LIST", Bytes(2)))},
        {"LWaveFile::OpenSource subchunk too short (< 0)!", WaveFile(negative + kFmt16 + kData)},
        {"LWaveFile::OpenSource subchunk too short (< 0)!", WaveFile(kFmt16 + negative + kData)},
        {"LWaveFile::OpenSource fmt to short or too long!",
         WaveFile(Chunk("fmt ", FormatRecord(1, 1, 8000, 16, 13)) + kData)},
        {"LWaveFile::OpenSource fmt to short or too long!",
         WaveFile(Chunk("fmt ", FormatRecord(1, 1, 8000, 16, 8193)) + kData)},
        {"LWaveFile::OpenSource fmt error!", WaveFile(Text("fmt ") + Little(18) + Bytes(17))},
        {"LWaveFile::OpenSource data subchunk not found!", WaveFile(kFmt16)},
        {"LWaveFile::OpenSource data subchunk not found!", WaveFile(kData + kFmt16)},
        {"LWaveFile::OpenSource channels or sample rate out of range",
         WaveFile(Chunk("fmt ", FormatRecord(1, 0, 8000, 16)) + kData)},
        {"LWaveFile::OpenSource channels or sample rate out of range",
         WaveFile(Chunk("fmt ", FormatRecord(1, 256, 8000, 16)) + kData)},
        {"LWaveFile::OpenSource channels or sample rate out of range",
         WaveFile(Chunk("fmt ", FormatRecord(1, 1, 196001, 16)) + kData)},
        {"LWaveFile::OpenSource channels or sample rate out of range",
         WaveFile(Chunk("fmt ", FormatRecord(1, 1, 0, 16)) + kData)},
        {"LWaveFile::OpenSource no codec for this format",
         WaveFile(Chunk("fmt ", FormatRecord(1, 1, 8000, 24)) + kData)},
        {"LWaveFile::OpenSource no codec for this format",
         WaveFile(Chunk("fmt ", FormatRecord(0x31, 1, 8000, 0)) + kData)},
    };
    for (const auto& c : kCases) {
        TraceLog log;
        LSoundSource source = OpenBytes(c.bytes);
        EXPECT_TRUE(source->IsError()) << c.trace;
        EXPECT_EQ(source->GetSampleRate(), 11025);
        EXPECT_EQ(log.All(), c.trace + std::string("\n"));
    }
    TraceLog log;
    EXPECT_TRUE(LWaveFile::OpenSource(LPath("no/such/file.wav"))->IsError());
    EXPECT_TRUE(log.Has("LWaveFile::OpenSource Unable to Open File:"));
}

TEST(WaveSource, TellsPcmByItsTag) {
    static const struct {
        Bytes bytes;
        bool isPcm;
    } kCases[] = {
        {WaveFile(kFmt16), true},  // the data are not looked for
        {WaveFile(Chunk("fmt ", FormatRecord(1, 0, 0, 64, 14))), true},
        {WaveFile(Chunk("fmt ", FormatRecord(2, 1, 8000, 4)) + kData), false},
        {WaveFile(Chunk("fmt ", FormatRecord(1, 1, 8000, 16, 13)) + kData), false},
        {WaveFile(kData), false},
    };
    for (const auto& c : kCases) {
        LMemoryFile file(c.bytes);
        EXPECT_EQ(LWaveFile::TestPCM(file), c.isPcm);
    }
    TraceLog log;
    const ScratchFile file(WaveFile(Chunk("fmt ", Bytes(2))));
    EXPECT_FALSE(LWaveFile::TestPCM(file.path));
    EXPECT_TRUE(log.Has("LWaveFile::TestPCM chunk too short"));
}

TEST(WaveSource, PlaysARecordingWhileItGrowsAndWhenItIsCut) {
    const ScratchFile file({});
    Samples block(kBlockFrames);
    std::iota(block.begin(), block.end(), 0);
    LSoundSink sink = LWaveFile::OpenSinkPCM(file.path, 16, 1, 8000);
    sink->Write(block.data(), kBlockFrames);

    TraceLog log;
    LSoundSource source = LWaveFile::OpenSource(file.path);
    EXPECT_TRUE(log.Has("LSRCPCMFileBase::LSRCPCMFileBase Wav File Is Streaming"));
    ASSERT_EQ(source->GetLength(), kBlockFrames);
    // Voice activation takes silence back, then the speaker goes on.
    sink->Truncate(10);
    EXPECT_EQ(ReadAll(source, 100), [] {
        Samples expected(100);
        for (int i = 8; i < 10; ++i) expected[static_cast<size_t>(i)] = 16;
        return expected;
    }());
    sink->Write(block.data(), kBlockFrames - 10);
    EXPECT_EQ(ReadAll(source, 1)[0], FromPcm16(ToPcm16(90))) << "in step with its position";
    sink.Reset();
    EXPECT_EQ(LWaveFile::OpenSource(file.path)->GetLength(), kBlockFrames);
}

TEST(WaveInfo, TellsLayoutAndLength) {
    const Bytes fmt8 = Chunk("fmt ", FormatRecord(1, 1, 8000, 8));
    static const struct {
        const char* what;
        Bytes bytes;
        int64_t lengthMs;
        bool streaming, rewrite;
    } kCases[] = {
        {"ours", WaveFile(kFmt16 + Chunk("data", Bytes(16000))), 1000, false, false},
        {"ours, left by a crash", WaveFile(kFmt16 + kOpenData + Bytes(16003)), 1000, true, false},
        {"8 bits", WaveFile(fmt8 + Chunk("data", Bytes(12000))), 1500, false, false},
        {"a padded odd chunk", WaveFile(fmt8 + Chunk("data", Bytes(11999))), 1499, false, true},
        {"44-byte head", WaveFile(Chunk("fmt ", FormatRecord(1, 1, 8000, 16, 16)) + kData), 0, false, true},
        {"a chunk behind", WaveFile(kFmt16 + kData + Chunk("LIST", Bytes(4))), 0, false, true},
        {"24 bits", WaveFile(Chunk("fmt ", FormatRecord(1, 1, 8000, 24)) + Chunk("data", Bytes(2400))), 100,
         false, true},
        {"compressed",
         WaveFile(Chunk("fmt ", Hex("3100 0100 401F0000 5906 0000 4100 0000 0200 4001")) +
                  Chunk("data", Bytes(1625))),
         1000, false, false},
        {"compressed without a byte rate",
         WaveFile(Chunk("fmt ", FormatRecord(0x31, 1, 8000, 0)) + Chunk("data", Bytes(800))), 100, false,
         false},
    };
    for (const auto& c : kCases) {
        LMemoryFile file(c.bytes);
        LWaveInfo info;
        ASSERT_TRUE(LWaveFile::ReadInfo(file, info)) << c.what;
        EXPECT_EQ(info.LengthMs(), c.lengthMs) << c.what;
        EXPECT_EQ(info.isStreaming, c.streaming) << c.what;
        EXPECT_EQ(info.NeedsRewrite(), c.rewrite) << c.what;
        EXPECT_EQ(file.Position(), info.dataStart) << c.what;
    }
}

TEST(WaveInfo, HoldsForAFileThatEndsAnywhere) {
    const Bytes whole = WaveFile(Chunk("LIST", Bytes(3)) + kFmt16 + kData);
    for (size_t size = 0; size <= whole.size(); ++size) {
        const Bytes cut(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(size));
        LMemoryFile file(cut);
        LWaveInfo info;
        const bool readable = LWaveFile::ReadInfo(file, info);
        EXPECT_EQ(readable, size >= whole.size() - 6) << size;
        EXPECT_EQ(OpenBytes(cut)->GetLength(), readable ? info.Frames() : 0) << size;
    }
}

// Rewrites a file made of these bytes and returns what it holds then.
static Bytes Rewritten(const Bytes& before, ProcessResult expected, NotingContext context = {}) {
    const ScratchFile file(before);
    EXPECT_EQ(LRewriteWave(file.path).Process(context), expected);
    EXPECT_FALSE(LFile::Exists(file.path.WithExtension(".tmp"))) << "nothing is left beside it";
    EXPECT_EQ(context.error.empty(), expected != ProcessResult::Failed);
    return file.Contents();
}

TEST(RewriteWave, BringsEveryPcmFileIntoOurLayout) {
    const Bytes list = Chunk("LIST", Bytes(5));
    const Bytes fmt8Stereo = Chunk("fmt ", FormatRecord(1, 2, 11025, 8));
    const Bytes wide24 = Hex("7F0001 800001 FFFF7F 000080 7FFF7F 80FF00");
    const Bytes wide32 = Hex("FF7F0100 00800100 FFFFFF7F 00000080");
    static const struct {
        Bytes before, after;
    } kCases[] = {
        {WaveFile(Chunk("fmt ", FormatRecord(1, 1, 8000, 16, 16)) + kData), WaveFile(kFmt16 + kData)},
        {WaveFile(list + kFmt16 + list + kOpenData + kFrames), WaveFile(kFmt16 + kData)},
        {WaveFile(Chunk("fmt ", FormatRecord(1, 1, 8000, 12)) + kData), WaveFile(kFmt16 + kData)},
        {WaveFile(fmt8Stereo + list + Chunk("data", Hex("00 FF 80 7F"))),
         WaveFile(fmt8Stereo + Chunk("data", Hex("00 FF 80 7F")))},
        // 24 and 32 bits round to the nearest, the top of the range holds.
        {WaveFile(Chunk("fmt ", FormatRecord(1, 1, 8000, 24)) + Chunk("data", wide24)),
         WaveFile(kFmt16 + Chunk("data", Hex("0001 0101 FF7F 0080 FF7F 0001")))},
        {WaveFile(Chunk("fmt ", FormatRecord(1, 1, 8000, 32)) + Chunk("data", wide32)),
         WaveFile(kFmt16 + Chunk("data", Hex("0100 0200 FF7F 0080")))},
    };
    for (const auto& c : kCases) EXPECT_EQ(Rewritten(c.before, ProcessResult::Done), c.after);
}

TEST(RewriteWave, KeepsEverySampleOfALongRecording) {
    Bytes samples(65536 * 2);
    for (size_t i = 0; i < samples.size(); ++i) samples[i] = static_cast<uint8_t>(i % 2 ? i >> 9 : i >> 1);
    const Bytes data = Chunk("data", samples);
    EXPECT_EQ(
        Rewritten(WaveFile(Chunk("fmt ", FormatRecord(1, 1, 8000, 16, 16)) + data), ProcessResult::Done),
        WaveFile(kFmt16 + data));
}

TEST(RewriteWave, LeavesTheOldFileWhenItHasNothingToDoOrDoesNotFinish) {
    const Bytes ours = WaveFile(kFmt16 + kOpenData + kFrames);
    EXPECT_EQ(Rewritten(ours, ProcessResult::Done), ours);
    const Bytes compressed = WaveFile(Chunk("fmt ", FormatRecord(0x31, 1, 8000, 0)) + kData);
    EXPECT_EQ(Rewritten(compressed, ProcessResult::Failed), compressed);
    NotingContext cancelling;
    cancelling.cancelAfter = 0;
    const Bytes foreign = WaveFile(kFmt16 + kData + Chunk("LIST", {}));
    EXPECT_EQ(Rewritten(foreign, ProcessResult::Stopped, cancelling), foreign);
}
