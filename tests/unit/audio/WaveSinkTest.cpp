#include "audio/LDeferredSink.h"
#include "audio/LSNKPCMFile.h"
#include "audio/LWaveFile.h"
#include "tests/unit/audio/AudioTest.h"

static const char kMono16Head[] =
    "52494646 %s 57415645 666D7420 12000000 0100 0100 401F0000 803E0000 0200 1000 0000 64617461 %s";

// The 46 bytes of a mono 16-bit file at 8000 Hz.
static Bytes Head(const char* riffSize, const char* dataSize) {
    char text[200];
    snprintf(text, sizeof text, kMono16Head, riffSize, dataSize);
    return Hex(text);
}

static const Bytes kOpenHead = Head("FFFFFFFF", "FFFFFFFF");

// A closed recording of that format with frames 0x0101, 0x0202, ...
static Bytes Recording(int frames) {
    Bytes data;
    for (int i = 1; i <= frames; ++i) data.insert(data.end(), 2, static_cast<uint8_t>(i));
    return WaveFile(Chunk("fmt ", FormatRecord(1, 1, 8000, 16)) + Chunk("data", data));
}

static LSoundSink OpenSink16(LMemoryFile& file, int32_t startFrames) {
    return LSoundSink::Make<LSNKPCMFile16>(Borrow(file), startFrames, uint8_t{1}, 8000);
}

static void ExpectReadable(const LMemoryFile& file, int64_t frames) {
    LMemoryFile copy(file.View());
    LWaveInfo info;
    ASSERT_TRUE(LWaveFile::ReadInfo(copy, info));
    EXPECT_TRUE(info.isOurLayout);
    EXPECT_EQ(info.Frames(), frames);
    if (!info.isStreaming) {
        EXPECT_EQ(copy.Size(), 46 + info.dataBytes);
    }
}

TEST(PcmSink, LeavesItsSizesUnknownUntilItIsClosed) {
    LMemoryFile file;
    const Samples frames = {FromPcm16(0x0102), FromPcm16(-2)};
    {
        LSNKPCMFile16 sink(Borrow(file), 0, 1, 8000);
        EXPECT_EQ(FileBytes(file), kOpenHead);
        sink.Write(frames.data(), 2);
        EXPECT_EQ(FileBytes(file), kOpenHead + Hex("0201 FEFF"));
        EXPECT_EQ(sink.GetFrames(), 2);
    }
    EXPECT_EQ(FileBytes(file), Head("2A000000", "04000000") + Hex("0201 FEFF"));
}

TEST(PcmSink, WritesEightBitStereo) {
    LMemoryFile file;
    const Samples frames = {0, -524288, 0x7FFFF, 4096};
    {
        LSNKPCMFile8 sink(Borrow(file), 0, 2, 11025);
        sink.Write(frames.data(), 2);
    }
    EXPECT_EQ(FileBytes(file),
              Hex("52494646 2A000000 57415645 666D7420 12000000 0100 0200 112B0000 22560000 0200 0800"
                  "0000 64617461 04000000 80 00 FF 81"));
}

TEST(PcmSink, KeepsTheStartOfARecordingAndCutsTheRest) {
    static const struct {
        int32_t startFrames;
        int32_t kept;
    } kCases[] = {{0, 0}, {-5, 0}, {2, 2}, {3, 3}, {4, 3}, {INT32_MAX, 3}};
    const int32_t sample = FromPcm16(0x7777);
    for (const auto& c : kCases) {
        LMemoryFile file(Recording(3) + Hex("99"));  // half a frame at the end, as a crash leaves it
        {
            LSoundSink sink = OpenSink16(file, c.startFrames);
            EXPECT_EQ(sink->GetFrames(), c.kept);
            EXPECT_EQ(file.Size(), 46 + c.kept * 2) << "cut at once";
            sink->Write(&sample, 1);
        }
        Bytes expected = Recording(c.kept + 1);
        std::fill(expected.end() - 2, expected.end(), uint8_t{0x77});
        EXPECT_EQ(FileBytes(file), expected) << c.startFrames;
    }
}

TEST(PcmSink, TruncatesOnlyWhatWasWritten) {
    static const struct {
        int32_t frames;
        int32_t left;
    } kCases[] = {{4, 3}, {3, 3}, {1, 1}, {0, 0}, {-1, 0}};
    for (const auto& c : kCases) {
        LMemoryFile file(Recording(3));
        const int32_t sample = FromPcm16(static_cast<int16_t>((c.left + 1) * 0x0101));
        {
            LSoundSink sink = OpenSink16(file, 3);
            sink->Truncate(c.frames);
            EXPECT_EQ(sink->GetFrames(), c.left);
            EXPECT_EQ(file.Size(), 46 + c.left * 2);
            sink->Write(&sample, 1);
        }
        EXPECT_EQ(FileBytes(file), Recording(c.left + 1)) << c.frames;
    }
}

TEST(PcmSink, KeepsWholeFramesOfWhatAFullDiskTook) {
    const Samples frames(4, FromPcm16(0x0101));
    for (int capacity = 0; capacity <= 56; ++capacity) {
        LMemoryFile file;
        file.SetCapacity(static_cast<size_t>(capacity));
        int32_t kept = 0;
        {
            LSoundSink sink = OpenSink16(file, 0);
            sink->Write(frames.data(), 4);
            EXPECT_EQ(sink->IsError(), capacity < 54) << capacity;
            kept = sink->GetFrames();
            sink->Write(frames.data(), 1);  // room or not: nothing may follow a gap
            if (capacity < 54) {
                EXPECT_EQ(sink->GetFrames(), kept);
            }
        }
        if (capacity < 46) continue;
        EXPECT_EQ(kept, std::min((capacity - 46) / 2, 4));
        ExpectReadable(file, capacity < 54 ? kept : 4 + (capacity - 54) / 2);
    }
}

TEST(PcmSink, RefusesWhatNoFileCanBe) {
    TraceLog log;
    LMemoryFile file(Recording(1));
    const Bytes before = FileBytes(file);
    EXPECT_TRUE(LSNKPCMFile16(Borrow(file), 0, 0, 8000).IsError());
    EXPECT_TRUE(LSNKPCMFile16(Borrow(file), 0, 1, 0).IsError());
    EXPECT_EQ(FileBytes(file), before);
    EXPECT_TRUE(LSNKPCMFile16(LPath("no/such/folder/a.wav"), 0, 1, 8000).IsError());
    EXPECT_TRUE(log.Has("LSNKPCMFileBase::LSNKPCMFileBase unable to open file:"));
}

TEST(PcmSink, HandsRecordingsToTheDiskInTime) {
    const Samples second(8000);
    LMemoryFile file;
    BorrowedStream::flushes = 0;
    {
        LSoundSink sink = LSNKPCMFileBase::Open(Borrow(file), 0, 16, 1, 8000, 10);
        for (int i = 0; i < 25; ++i) sink->Write(second.data(), 8000);
        EXPECT_EQ(BorrowedStream::flushes, 2);
    }
    EXPECT_EQ(BorrowedStream::flushes, 3);
}

TEST(WaveFileSink, ChoosesTheSampleSize) {
    const ScratchFile file({});
    for (int bits : {1, 8, 9, 16}) {
        EXPECT_FALSE(LWaveFile::OpenSinkPCM(file.path, bits, 1, 8000)->IsError());
        const int expected = bits <= 8 ? 8 : 16;
        EXPECT_EQ(file.Contents(),
                  WaveFile(Chunk("fmt ", FormatRecord(1, 1, 8000, expected)) + Chunk("data", {})));
    }
    TraceLog log;
    EXPECT_FALSE(LWaveFile::OpenSinkPCM(file.path, 17, 1, 8000));
    EXPECT_TRUE(
        log.Has("LWaveFile::OpenSinkPCM BitsPerSample too large - use BUILD_SUPPORT_32BITSAMPLEFORMATS"));
    EXPECT_FALSE(LWaveFile::OpenSinkPCM(file.path, 0, 1, 8000));
}

TEST(WaveFileSink, TakesPcmFormatsOnly) {
    const ScratchFile file({});
    LSoundSink sink = LWaveFile::OpenSink(file.path, LWaveFileFormat::Pcm(8, 2, 22050));
    ASSERT_TRUE(sink && !sink->IsError());
    EXPECT_EQ(sink->GetChannels(), 2);
    EXPECT_EQ(sink->GetSampleRate(), 22050);
    EXPECT_FALSE(LWaveFile::OpenSink(file.path, LWaveFileFormat(FormatRecord(0x31, 1, 8000, 0))));
    EXPECT_FALSE(LWaveFile::OpenSink(file.path, LWaveFileFormat::Pcm(16, 256, 8000)));
    EXPECT_FALSE(LWaveFile::OpenSink(file.path, LWaveFileFormat::Pcm(24, 1, 8000)));
}

TEST(DeferredSink, LeavesTheFileAloneUntilAudioArrives) {
    LMemoryFile file(Recording(3));
    {
        LSoundSink sink = LDeferredSink::Open(Borrow(file), 1, 16, 1, 8000);
        EXPECT_EQ(sink->GetFrames(), 1);
        sink->Truncate(0);
        sink->Write(nullptr, 0);
        EXPECT_EQ(sink->GetFrames(), 1);
    }
    EXPECT_EQ(FileBytes(file), Recording(3));
    const Samples frames = {FromPcm16(0x0202), FromPcm16(0x0303), FromPcm16(0x0404), 0};
    {
        LSoundSink sink = LDeferredSink::Open(Borrow(file), 1, 16, 1, 8000);
        sink->Write(frames.data(), 4);
        EXPECT_EQ(FileBytes(file), kOpenHead + Hex("0101 0202 0303 0404 0000"));
        sink->Truncate(4);
        EXPECT_EQ(sink->GetFrames(), 4);
    }
    EXPECT_EQ(FileBytes(file), Recording(4));
}

TEST(DeferredSink, StartsWithinWhatTheFileHolds) {
    static const struct {
        Bytes contents;
        int32_t startFrames;
        int32_t frames;
        bool error;
    } kCases[] = {
        {{}, 100, 0, false},
        {Recording(3), 100, 3, false},
        {Recording(3) + Hex("99"), 100, 3, false},
        {Recording(3), -1, 0, false},
        {kOpenHead + Hex("0101 0202"), 5, 2, false},
        {Bytes(60, 1), 0, 0, false},
        {Bytes(60, 1), 1, 1, true},  // frames to keep in a file of another layout
        {WaveFile(Chunk("fmt ", FormatRecord(1, 1, 8000, 8)) + Chunk("data", Bytes(9))), 1, 1, true},
    };
    for (const auto& c : kCases) {
        LMemoryFile file(c.contents);
        LSoundSink sink = LDeferredSink::Open(Borrow(file), c.startFrames, 16, 1, 8000);
        EXPECT_EQ(sink->GetFrames(), c.frames);
        EXPECT_EQ(sink->IsError(), c.error);
        sink.Reset();
        EXPECT_EQ(FileBytes(file), c.contents);
    }
}

TEST(DeferredSink, MakesNoFileWithoutAudio) {
    const TempFolder folder;
    const LPath path = folder.File("new.wav");
    EXPECT_FALSE(LDeferredSink::Open(path, 0, 16, 1, 8000)->IsError());
    EXPECT_FALSE(LFile::Exists(path));
    EXPECT_TRUE(LDeferredSink::Open(LPath("no/such/folder/a.wav"), 0, 16, 1, 8000)->IsError());
}
