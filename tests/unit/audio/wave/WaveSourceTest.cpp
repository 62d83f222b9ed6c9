#include "audio/wave/LSNKPCMFile.h"
#include "audio/wave/LWaveFile.h"
#include "tests/unit/audio/SoundKit.h"

static const Bytes kFmt16 = PcmFormat(16);
static const Bytes kFrames = Hex("0100 0200 0300");
static const Bytes kData = Chunk("data", kFrames);
static const Bytes kOpenData = Text("data") + Little(0xFFFFFFFF);

static LSoundSource OpenBytes(const Bytes& bytes) {
    return LWaveFile::OpenSource(std::make_unique<LMemoryFile>(bytes));
}

TEST(WaveSource, ReadsWholeFramesOfEachChannel) {
    LSoundSource stereo =
        OpenBytes(WaveFile(PcmFormat(8, 18, 2, 11025) + Chunk("data", Hex("00 80 FF 81 77"))));
    EXPECT_EQ(stereo->GetSampleRate(), 11025);
    EXPECT_EQ(stereo->GetLevel(), 0x7FFF0);
    EXPECT_EQ(stereo->GetLength(), 2);
    EXPECT_EQ(ReadFrames(*stereo, 3), (Samples{-524288, 0, 0x7F000, 4096, 0, 0}));
}

TEST(WaveSource, SeeksWithSilenceBeforeTheStart) {
    LSoundSource source = OpenBytes(WaveFile(kFmt16 + kData + Chunk("LIST", Bytes(20, 0x77))));
    static const std::pair<int32_t, Samples> kCases[] = {
        {1, {32, 48, 0, 0, 0, 0, 0}}, {0, {16, 32, 48, 0, 0, 0, 0}}, {-2, {0, 0, 16, 32, 48, 0, 0}},
        {-9, {0, 0, 0, 0, 0, 0, 0}},  {3, {0, 0, 0, 0, 0, 0, 0}},    {99, {0, 0, 0, 0, 0, 0, 0}},
    };
    for (const auto& [to, read] : kCases) {
        source->Seek(to);
        EXPECT_EQ(ReadFrames(*source, 7), read) << to;
        EXPECT_EQ(source->GetPosition(), to + 7);
    }
    source->Seek(INT32_MAX);
    ReadFrames(*source, 4);
    EXPECT_EQ(source->GetPosition(), INT32_MAX);
}

TEST(WaveSource, FindsTheDataInEveryValidFile) {
    const Bytes list = Chunk("LIST", Hex("01 02 03"));  // odd: padded
    const std::pair<const char*, Bytes> cases[] = {
        {"16-byte fmt", WaveFile(PcmFormat(16, 16) + kData)},
        {"fmt with half of the last field", WaveFile(PcmFormat(16, 17) + kData)},
        {"fmt with extra bytes", WaveFile(PcmFormat(16, 40) + kData)},
        {"longest fmt", WaveFile(PcmFormat(16, 8192) + kData)},
        {"12 bits", WaveFile(PcmFormat(12) + kData)},
        {"chunks around", WaveFile(list + kFmt16 + list + kData + list)},
        {"a foreign chunk in front", Chunk("ABCD", Bytes(6)) + WaveFile(kFmt16 + kData)},
        {"still being written", WaveFile(kFmt16 + kOpenData + kFrames)},
        {"cut off in a frame", WaveFile(kFmt16 + kOpenData + kFrames + Hex("44"))},
        {"shorter than it says", WaveFile(kFmt16 + Text("data") + Little(0x7FFFFFFF) + kFrames)},
    };
    for (const auto& [what, bytes] : cases) {
        LSoundSource source = OpenBytes(bytes);
        EXPECT_FALSE(source->IsError()) << what;
        EXPECT_EQ(source->GetLength(), 3) << what;
        EXPECT_EQ(ReadFrames(*source, 4), (Samples{16, 32, 48, 0})) << what;
    }
}

TEST(WaveSource, SaysWhyItRefusesAFile) {
    const Bytes negative = Text("LIST") + Little(0x80000000);
    const Bytes almostOpen = Text("LIST") + Little(0xFFFFFFFE);
    const auto withFormat = [](uint32_t tag, uint32_t channels, uint32_t rate, uint32_t bits) {
        return WaveFile(Chunk("fmt ", FormatRecord(tag, channels, rate, bits)) + kData);
    };
    const std::pair<const char*, std::vector<Bytes>> cases[] = {
        {"No RIFF WAVE chunk found",
         {{}, Chunk("ABCD", Bytes(100)), Text("RIFF") + Little(100) + Text("AVI ") + Bytes(99)}},
        {"chunk too short!",
         {Chunk("ABCD", Bytes(4)) + WaveFile(kFmt16 + kData), Text("ABCD") + Little(0xFFFFFFFF) + Bytes(99)}},
        {"fmt subchunk not found!", {WaveFile({}), WaveFile(Chunk("LIST", Bytes(2)))}},
        {"subchunk too short (< 0)!",
         {WaveFile(negative + kFmt16 + kData), WaveFile(kFmt16 + negative + kData),
          WaveFile(almostOpen + kFmt16 + kData)}},
        {"fmt to short or too long!",
         {WaveFile(PcmFormat(16, 13) + kData), WaveFile(PcmFormat(16, 8193) + kData)}},
        {"fmt error!", {WaveFile(Text("fmt ") + Little(18) + Bytes(17))}},
        {"data subchunk not found!",
         {WaveFile(kFmt16), WaveFile(kData + kFmt16), WaveFile(kFmt16 + Bytes(8000) + kData)}},
        {"channels or sample rate out of range",
         {withFormat(1, 0, 8000, 16), withFormat(1, 256, 8000, 16), withFormat(1, 1, 196001, 16),
          withFormat(1, 1, 0, 16)}},
    };
    for (const auto& [reason, files] : cases) {
        for (const Bytes& bytes : files) {
            TraceLog log;
            EXPECT_TRUE(OpenBytes(bytes)->IsError()) << reason;
            EXPECT_EQ(log.All(), std::string("LWaveFile::OpenSource ") + reason + "\n");
            LMemoryFile file(bytes);
            EXPECT_FALSE(std::string_view(reason).starts_with("fmt") && LWaveFile::TestPCM(file));
        }
    }
    TraceLog log;
    LSoundSource noCodec = OpenBytes(withFormat(0x7777, 2, 8000, 8));
    EXPECT_TRUE(noCodec->IsError() && noCodec->GetSampleRate() == 11025 && noCodec->GetLevel() == 0x200000);
    EXPECT_EQ(log.All(), "LSRCACMWave::LSRCACMWave acmStreamOpen handle invalid ERROR\n");
    EXPECT_TRUE(LWaveFile::OpenSource(LPath("no/such/file.wav"))->IsError());
    EXPECT_TRUE(log.Has("LWaveFile::OpenSource Unable to Open File:"));
}

TEST(WaveSource, IsNotWholeWhenAReadFellShort) {
    for (const int missing : {0, 1}) {
        LMemoryFile file(Wave16(Bytes(20000)));
        auto drive = Borrow(file);
        drive->readable = file.Size() - missing;
        LSoundSource source = LWaveFile::OpenSource(std::move(drive));
        ReadFrames(*source, kBlockFrames);
        EXPECT_TRUE(source->IsWhole());
        ReadFrames(*source, kBlockFrames);
        EXPECT_EQ(source->IsWhole(), missing == 0);
    }
}

TEST(WaveSource, FollowsARecordingUntilItsRecorderHasFinishedIt) {
    enum class Finish { Closed, Crash, ClosedAtTheSameMoment };
    for (const Finish finish : {Finish::Closed, Finish::Crash, Finish::ClosedAtTheSameMoment}) {
        LMemoryFile file;
        const Samples spoken = {16, 32, 48, 64, 80, 96, 112, 128};
        LSoundSink sink = LSNKPCMFileBase::Open(Borrow(file), 0, 16, 1, 8000);
        sink->Write(spoken.data(), 2);
        BorrowedStream::isBeingWritten = true;
        LSoundSource source = LWaveFile::OpenSource(Borrow(file));
        EXPECT_TRUE(source->IsGrowing());
        EXPECT_EQ(source->GetLength(), 2);
        EXPECT_EQ(ReadFrames(*source, 3), (Samples{16, 32, 0})) << "silence in place of what comes later";
        if (finish == Finish::Crash) source->Seek(3);  // beyond its end, where it is already
        sink->Write(&spoken[2], 4);
        EXPECT_EQ(source->GetLength(), 6);
        EXPECT_EQ(ReadFrames(*source, 2), (Samples{64, 80})) << "each sample in its own place";
        // Voice activation takes silence back, then the speaker goes on.
        sink->Truncate(4);
        EXPECT_EQ(ReadFrames(*source, 1), Samples{0});
        sink->Write(&spoken[4], 4);
        EXPECT_EQ(ReadFrames(*source, 1), Samples{112}) << "in step with its position";
        EXPECT_TRUE(source->IsGrowing());

        const auto append = [&file] {  // by whoever else
            file.Seek(file.Size());
            EXPECT_TRUE(file.WriteAll(Hex("0700 0800")));
        };
        const Bytes leftByCrash = FileBytes(file);
        sink.Reset();
        if (finish == Finish::Crash)
            file = LMemoryFile(leftByCrash);
        else
            append();
        BorrowedStream::isBeingWritten = finish == Finish::ClosedAtTheSameMoment;
        EXPECT_FALSE(source->IsGrowing());
        if (finish == Finish::Crash) append();
        EXPECT_EQ(source->GetLength(), 8) << "that was final";
        BorrowedStream::isBeingWritten = false;
        EXPECT_FALSE(LWaveFile::OpenSource(Borrow(file))->IsGrowing()) << "nobody writes it";
    }
}

TEST(WaveInfo, TellsLayoutAndLength) {
    static const std::tuple<const char*, Bytes, int64_t, bool, bool> kCases[] = {
        {"ours", Wave16(Bytes(16000)), 1000, false, false},
        {"ours, left by a crash", WaveFile(kFmt16 + kOpenData + Bytes(16003)), 1000, true, false},
        {"a padded odd chunk", WaveFile(PcmFormat(8) + Chunk("data", Bytes(11999))), 1499, false, true},
        {"a chunk behind", WaveFile(kFmt16 + kData + Chunk("LIST", Bytes(4))), 0, false, true},
        {"24 bits", WaveFile(PcmFormat(24) + Chunk("data", Bytes(2400))), 100, false, true},
        {"compressed",
         WaveFile(Chunk("fmt ", Hex("3100 0100 401F0000 5906 0000 4100 0000 0200 4001")) +
                  Chunk("data", Bytes(1625))),
         1000, false, true},
        {"compressed with a wrong byte rate",
         WaveFile(Chunk("fmt ", Hex("1100 0100 401F0000 01000000 0001 0400 0200 F901")) +
                  Chunk("data", Bytes(256 * 16))),
         1010, false, true},
        {"compressed without a byte rate",
         WaveFile(Chunk("fmt ", FormatRecord(0x31, 1, 8000, 0)) + Chunk("data", Bytes(800))), 100, false,
         true},
    };
    for (const auto& [what, bytes, lengthMs, isStreaming, needsRewrite] : kCases) {
        LMemoryFile file(bytes);
        LWaveInfo info;
        ASSERT_TRUE(LWaveFile::ReadInfo(file, info)) << what;
        EXPECT_EQ(info.LengthMs(), lengthMs) << what;
        EXPECT_EQ(info.isStreaming, isStreaming) << what;
        EXPECT_EQ(info.NeedsRewrite(), needsRewrite) << what;
    }
}
