#include "audio/wave/LDeferredSink.h"
#include "audio/wave/LSNKPCMFile.h"
#include "audio/wave/LWaveFile.h"
#include "tests/unit/audio/AudioTest.h"

// The 46 bytes of a mono 16-bit file at 8000 Hz that is being written.
static const Bytes kOpenHead =
    Hex("52494646 FFFFFFFF 57415645 666D7420 12000000 0100 0100 401F0000 803E0000 0200 1000 0000"
        "64617461 FFFFFFFF");

// A closed recording of that format with frames 0x0101, 0x0202, ...
static Bytes Recording(int frames) {
    Bytes data;
    for (int i = 1; i <= frames; ++i) data.insert(data.end(), 2, static_cast<uint8_t>(i));
    return Wave16(data);
}

static int32_t Sample(int number) {
    return FromPcm16(static_cast<int16_t>(number * 0x0101));
}

static LSoundSink OpenSink16(LMemoryFile& file, int32_t startFrames) {
    return LSoundSink::Make<LSNKPCMFile16>(Borrow(file), startFrames, uint8_t{1}, 8000);
}

TEST(PcmSink, KeepsTheStartOfARecordingAndCutsTheRest) {
    static const std::tuple<int32_t, int32_t, int32_t> kCases[] = {
        {0, 9, 0}, {-5, 9, 0}, {2, 9, 2}, {3, 9, 3}, {4, 9, 3}, {INT32_MAX, 9, 3},
        {3, 4, 3}, {3, 3, 3},  {3, 1, 1}, {3, 0, 0}, {3, -1, 0}};
    for (const auto& [startFrames, truncateTo, kept] : kCases) {
        LMemoryFile file(Recording(3) + Hex("99"));  // half a frame at the end, as a crash leaves it
        LSoundSink sink = OpenSink16(file, startFrames);
        sink->Truncate(truncateTo);
        EXPECT_EQ(sink->GetFrames(), kept);
        EXPECT_EQ(file.Size(), 46 + kept * 2) << "cut at once";
        const int32_t next = Sample(kept + 1);
        sink->Write(&next, 1);
        sink.Reset();
        EXPECT_EQ(FileBytes(file), Recording(kept + 1)) << startFrames << " " << truncateTo;
    }
}

TEST(PcmSink, KeepsWholeFramesOfWhatAFullDiskTook) {
    const Samples frames = {Sample(1), Sample(2), Sample(3), Sample(4), Sample(5)};
    for (int capacity = 0; capacity <= 56; ++capacity) {
        LMemoryFile file;
        file.SetCapacity(static_cast<size_t>(capacity));
        LSoundSink sink = OpenSink16(file, 0);
        sink->Write(frames.data(), 4);
        EXPECT_EQ(sink->IsError(), capacity < 54) << capacity;
        const int32_t kept = sink->GetFrames();
        EXPECT_EQ(kept, std::clamp((capacity - 46) / 2, 0, 4));
        sink->Write(&frames[4], 1);  // room or not: nothing may follow a gap
        const int32_t added = sink->GetFrames() - kept;
        EXPECT_EQ(added, capacity == 56);
        sink.Reset();
        if (capacity >= 46) {
            EXPECT_EQ(FileBytes(file), Recording(kept + added)) << capacity;
        }
    }
}

TEST(PcmSink, HandsRecordingsToTheDiskInTime) {
    const Samples second(8000);
    LMemoryFile file;
    BorrowedStream::flushes = 0;
    LSoundSink sink = LSNKPCMFileBase::Open(Borrow(file), 0, 16, 1, 8000, 10);
    for (int i = 0; i < 25; ++i) sink->Write(second.data(), 8000);
    EXPECT_EQ(BorrowedStream::flushes, 2);
    sink.Reset();
    EXPECT_EQ(BorrowedStream::flushes, 3);
}

TEST(WaveFileSink, ChoosesTheSampleSizeAndLeavesAFileThatItCannotWrite) {
    const ScratchFile file({});
    for (const uint32_t bits : {1, 8, 9, 16}) {
        EXPECT_FALSE(LWaveFile::OpenSinkPCM(file.path, static_cast<int>(bits), 1, 8000)->IsError());
        EXPECT_EQ(file.Contents(), WaveFile(PcmFormat(bits <= 8 ? 8 : 16) + Chunk("data", {})));
    }
    EXPECT_FALSE(LWaveFile::OpenSink(file.path, LWaveFileFormat::Pcm(8, 2, 22050))->IsError());
    const Bytes before = WaveFile(PcmFormat(8, 18, 2, 22050) + Chunk("data", {}));
    const std::pair<const char*, LWaveFileFormat> refused[] = {
        {"LWaveFile::OpenSinkPCM BitsPerSample too large - use BUILD_SUPPORT_32BITSAMPLEFORMATS",
         LWaveFileFormat::Pcm(17, 1, 8000)},
        {"LWaveFile::OpenSinkPCM BitsPerSample too large - use BUILD_SUPPORT_32BITSAMPLEFORMATS",
         LWaveFileFormat::Pcm(0, 1, 8000)},
        {"LWaveFile::OpenSource channels or sample rate out of range", LWaveFileFormat::Pcm(16, 256, 8000)},
        {"LSNKACMFile::LSNKACMFile acmStreamOpen ERROR", LWaveFileFormat(FormatRecord(0x7777, 1, 8000, 8))},
    };
    for (const auto& [trace, format] : refused) {
        TraceLog log;
        const LSoundSink sink = LWaveFile::OpenSink(file.path, format);
        EXPECT_TRUE(!sink || sink->IsError()) << trace;
        EXPECT_EQ(log.All(), std::string(trace) + "\n");
        EXPECT_EQ(file.Contents(), before) << trace;
    }
    EXPECT_TRUE(LWaveFile::OpenSinkPCM(file.path, 16, 0, 8000)->IsError());
    EXPECT_TRUE(LWaveFile::OpenSinkPCM(file.path, 16, 1, 0)->IsError());
    EXPECT_EQ(file.Contents(), before);
    EXPECT_TRUE(LWaveFile::OpenSinkPCM(LPath("no/such/folder/a.wav"), 16, 1, 8000)->IsError());
}

TEST(DeferredSink, LeavesTheFileAloneUntilAudioArrives) {
    LMemoryFile file(Recording(3));
    LSoundSink sink = LDeferredSink::Open(Borrow(file), 1, 16, 1, 8000);
    sink->Truncate(0);
    sink->Write(nullptr, 0);
    EXPECT_EQ(sink->GetFrames(), 1);
    EXPECT_EQ(FileBytes(file), Recording(3));
    const Samples frames = {Sample(2), Sample(3), Sample(4), 0};
    sink->Write(frames.data(), 4);
    EXPECT_EQ(FileBytes(file), kOpenHead + Hex("0101 0202 0303 0404 0000"));
    sink->Truncate(4);
    EXPECT_EQ(sink->GetFrames(), 4);
    sink.Reset();
    EXPECT_EQ(FileBytes(file), Recording(4));

    const ScratchFile old(Recording(3));
    const LPath unused = old.folder.File("new.wav");
    EXPECT_FALSE(LDeferredSink::Open(unused, 0, 16, 1, 8000)->IsError());
    EXPECT_FALSE(LFile::Exists(unused));
    EXPECT_TRUE(LDeferredSink::Open(old.folder.File("none/a.wav"), 0, 16, 1, 8000)->IsError());
    auto opened = std::make_unique<LFile>(old.path, LFile::Open::Write);
    LSoundSink::Make<LDeferredSink>(std::move(opened), old.path, 0, 16, uint8_t{1}, 8000).Reset();
    EXPECT_EQ(old.Contents(), Recording(3)) << "whatever the path's drive answered";
}

TEST(DeferredSink, RemovesItsFileWhenTheDiskTookNoAudio) {
    for (size_t capacity : {0u, 20u, 47u, 48u}) {
        const ScratchFile made({});
        LMemoryFile disk;
        disk.SetCapacity(capacity);
        LSoundSink sink = LSoundSink::Make<LDeferredSink>(Borrow(disk), made.path, 0, 16, uint8_t{1}, 8000);
        const Samples frames = {Sample(1), Sample(2)};
        sink->Write(frames.data(), 2);
        EXPECT_TRUE(sink->IsError());
        sink.Reset();
        EXPECT_EQ(LFile::Exists(made.path), capacity == 48) << capacity;  // one frame stays
    }
}

TEST(DeferredSink, StartsWithinWhatTheFileHolds) {
    static const std::tuple<Bytes, int32_t, int32_t, bool> kCases[] = {
        {{}, 100, 0, false},
        {Recording(3), -1, 0, false},
        {Recording(3) + Hex("99"), 100, 3, false},
        {kOpenHead + Hex("0101 0202"), 5, 2, false},
        {Bytes(60, 1), 0, 0, false},
        {Bytes(60, 1), 1, 1, true},  // frames to keep in a file of another layout
        {WaveFile(PcmFormat(8) + Chunk("data", Bytes(9))), 1, 1, true},
    };
    for (const auto& [contents, startFrames, frames, error] : kCases) {
        LMemoryFile file(contents);
        LSoundSink sink = LDeferredSink::Open(Borrow(file), startFrames, 16, 1, 8000);
        EXPECT_EQ(sink->GetFrames(), frames);
        EXPECT_EQ(sink->IsError(), error);
        sink.Reset();
        EXPECT_EQ(FileBytes(file), contents);
    }
}
