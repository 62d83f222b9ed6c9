#include "audio/convert/LPRSourceToSink.h"
#include "audio/wave/LAcmRecord.h"
#include "audio/wave/LRewriteWave.h"
#include "audio/wave/LSNKACMFile.h"
#include "audio/wave/LSRCACMWave.h"
#include "tests/stubs/StandInCodec.h"
#include "tests/unit/audio/AudioTest.h"

namespace {

using Fault = StandInCodec::Fault;

// A codec that misbehaves for one scope.
struct WithFault {
    explicit WithFault(Fault fault, int after = 0) {
        StandInCodec::fault = fault;
        StandInCodec::failAfter = after;
        StandInCodec::conversions = 0;
    }
    ~WithFault() { StandInCodec::fault = Fault::None; }
    WithFault(const WithFault&) = delete;
    WithFault& operator=(const WithFault&) = delete;
};

// What the stand-in codec can carry without loss, different in every frame of a block.
Samples Ramp(int32_t values) {
    Samples samples(static_cast<size_t>(values));
    for (size_t i = 0; i < samples.size(); ++i)
        samples[i] = FromPcm16(static_cast<int16_t>((i * 7 + i / 50) % 251 * 256 - 32768));
    return samples;
}

LSoundSink OpenSink(LMemoryFile& file, const LWaveFileFormat& format = StandInCodec::Format()) {
    return LSoundSink::Make<LSNKACMFile>(format, Borrow(file), StandInCodec::Open);
}

LSoundSource OpenSource(const Bytes& bytes) {
    auto stream = std::make_unique<LMemoryFile>(bytes);
    LWaveInfo info;
    EXPECT_TRUE(LWaveFile::ReadInfo(*stream, info));
    return LSoundSource::Make<LSRCACMWave>(std::move(stream), info, StandInCodec::Open);
}

// A file that the sink has made of these samples.
Bytes Encoded(const Samples& samples, const LWaveFileFormat& format = StandInCodec::Format()) {
    LMemoryFile file;
    LSoundSink sink = OpenSink(file, format);
    const size_t channels = format.Channels();
    for (size_t at = 0; at < samples.size();) {
        const size_t count = std::min<size_t>(samples.size() - at, 777 * channels);
        sink->Write(&samples[at], static_cast<int32_t>(count / channels));
        at += count;
    }
    EXPECT_EQ(sink->GetFrames(), static_cast<int32_t>(samples.size() / channels));
    sink.Reset();
    return FileBytes(file);
}

// With another byte rate in its head.
Bytes WithByteRate(Bytes file, uint32_t rate) {
    std::ranges::copy(Little(rate), file.begin() + 28);
    return file;
}

// The stand-in codec for a file that tells another block align than the codec has.
bool NineByteBlocks(const LWaveFileFormat&, const LWaveFileFormat& to, LAcmTiming timing,
                    std::unique_ptr<LAcmConversion>& conversion) {
    return StandInCodec::Open(StandInCodec::Format(), to, timing, conversion);
}

// Everything up to the end, read in pieces of that size. No length may lie at or below a position with more
// behind it.
Samples ReadToEnd(LSoundSource& source, int32_t piece) {
    Samples all;
    Samples block(static_cast<size_t>(piece) * source->GetChannels());
    for (int reads = 0; source->GetPosition() < source->GetLength() && reads < 100000; ++reads) {
        source->Read(block.data(), piece);
        all.insert(all.end(), block.begin(), block.end());
    }
    EXPECT_LE(source->GetLength(), source->GetPosition());
    all.resize(static_cast<size_t>(source->GetLength()) * source->GetChannels());
    return all;
}

Samples Part(const Samples& all, int32_t from, int32_t count) {
    Samples part(static_cast<size_t>(count));
    for (int32_t i = 0; i < count; ++i) {
        const int32_t at = from + i;
        if (at >= 0 && at < static_cast<int32_t>(all.size()))
            part[static_cast<size_t>(i)] = all[static_cast<size_t>(at)];
    }
    return part;
}

}  // namespace

TEST(AcmSink, WritesTheFormatRecordAndTheTrueSizesBehindUnknownOnes) {
    const Bytes record = Hex("017F 0100 401F0000 28230000 0900 0000 0300 010203");
    const auto head = [&](const Bytes& riff, const Bytes& data) {
        return Text("RIFF") + riff + Text("WAVEfmt ") + Little(21) + record + Text("data") + data;
    };
    LMemoryFile file(Bytes(500, 0x55));
    LSoundSink sink = OpenSink(file);
    EXPECT_EQ(FileBytes(file), head(Little(0xFFFFFFFF), Little(0xFFFFFFFF)));
    const Samples nine = Ramp(9);
    sink->Write(nine.data(), 9);
    EXPECT_EQ(file.Size(), 49 + 9) << "a block as soon as it is full";
    LSoundSource reader = OpenSource(FileBytes(file));
    EXPECT_EQ(ReadToEnd(reader, 100), Part(nine, 0, 8)) << "readable while it is written";
    sink.Reset();
    EXPECT_EQ(FileBytes(file),
              head(Little(41 + 18), Little(18)) + Hex("08 80878E959CA3AAB1 01 B8") + Bytes(7));
}

TEST(AcmSink, LosesNothingAtTheEndWhateverTheCodecHoldsBack) {
    const LWaveFileFormat gsm(Hex("3100 0100 401F0000 59060000 4100 0000 0200 4001"));
    const Samples samples = Ramp(20001);
    for (const Fault fault : {Fault::None, Fault::OneBlockAtATime, Fault::HoldsBackABlock,
                              Fault::OnlyNonRealTime, Fault::RefusesNothing}) {
        const WithFault with(fault);
        LSoundSource source = OpenSource(Encoded(samples));
        EXPECT_EQ(ReadToEnd(source, 1000), samples) << static_cast<int>(fault);
        EXPECT_TRUE(source->IsWhole());
    }
    // A codec that leaves the last block open: filled with silence where the format tells its length.
    const WithFault with(Fault::LeavesPartialBlocks);
    LSoundSource source = OpenSource(Encoded(Ramp(321), gsm));
    EXPECT_EQ(ReadToEnd(source, 1000).size(), 640u);
}

TEST(AcmSink, OnAFullDiskHeadAndDataAgree) {
    const Samples samples = Ramp(100);
    for (size_t capacity : {20u, 48u, 49u, 60u, 100u}) {
        LMemoryFile file;
        file.SetCapacity(capacity);
        LSoundSink sink = OpenSink(file);
        sink->Write(samples.data(), 100);
        EXPECT_TRUE(sink->IsError());
        EXPECT_EQ(sink->GetFrames(), 0);
        sink->Write(samples.data(), 100);
        sink.Reset();
        if (capacity < 49) continue;
        const size_t data = (capacity - 49) / 9 * 9;
        ASSERT_EQ(file.View().size(), 49 + data);
        EXPECT_EQ(Bytes(file.View().begin() + 45, file.View().begin() + 49),
                  Little(static_cast<uint32_t>(data)));
        LSoundSource source = OpenSource(FileBytes(file));
        EXPECT_EQ(ReadToEnd(source, 100), Part(samples, 0, static_cast<int32_t>(data / 9 * 8)));
    }
}

TEST(AcmSink, AFileThatLacksItsEndKeepsItsUnknownSizes) {
    LMemoryFile file;
    file.SetCapacity(49 + 9);
    LSoundSink sink = OpenSink(file);
    sink->Write(Ramp(9).data(), 9);
    EXPECT_FALSE(sink->IsError());
    sink.Reset();
    LWaveInfo info;
    ASSERT_TRUE(LWaveFile::ReadInfo(file, info));
    EXPECT_TRUE(info.isStreaming);
    EXPECT_EQ(info.dataBytes, 9);
}

TEST(Acm, SaysWhyItCannotBegin) {
    const Bytes good = Encoded(Ramp(100));
    static const struct {
        Fault fault;
        const char *sink, *source;
    } kCases[] = {
        {Fault::NoCodec, "acmStreamOpen ERROR", "acmStreamOpen handle invalid ERROR"},
        {Fault::NoHandle, "acmStreamOpen handle invalid ERROR", "acmStreamOpen handle invalid ERROR"},
        {Fault::NoSize, "acmStreamSize <= 0 ERROR", "acmStreamSize ERROR"},
        {Fault::AbsurdSize, "acmStreamSize <= 0 ERROR", "acmStreamSize ERROR"},
        {Fault::NoPrepare, "acmStreamPrepareHeader ERROR", "acmStreamPrepareHeader ERROR"},
    };
    for (const auto& c : kCases) {
        const WithFault with(c.fault);
        TraceLog log;
        LMemoryFile file;
        EXPECT_TRUE(OpenSink(file)->IsError());
        EXPECT_EQ(file.Size(), 0);
        LSoundSource source = OpenSource(good);
        EXPECT_TRUE(source->IsError());
        source->Seek(50);
        EXPECT_EQ(source->GetLength(), 0);
        EXPECT_EQ(log.All(), std::string("LSNKACMFile::LSNKACMFile ") + c.sink +
                                 "\nLSRCACMWave::LSRCACMWave " + c.source + "\n");
    }
    TraceLog log;
    LWaveInfo info;
    LMemoryFile file(good);
    ASSERT_TRUE(LWaveFile::ReadInfo(file, info));
    EXPECT_TRUE(LSRCACMWave(nullptr, info, StandInCodec::Open).IsError());
    EXPECT_TRUE(log.Has("LSRCACMWave::LSRCACMWave hFile == INVALID_HANDLE_VALUE ERROR"));
    const WithFault with(Fault::NoClose);
    LMemoryFile other;
    OpenSink(other).Reset();
    OpenSource(good).Reset();
    for (const char* line : {"LSNKACMFile::~LSNKACMFile acmStreamUnprepareHeader ERROR",
                             "LSNKACMFile::~LSNKACMFile acmStreamClose ERROR"})
        EXPECT_TRUE(log.Has(line)) << line;
}

TEST(AcmSource, ReadsTheSameInPiecesOfAnySizeAndWithAnyByteRate) {
    for (const uint16_t channels : {uint16_t{1}, uint16_t{2}}) {
        const Samples samples = Ramp(12003 * channels);
        const Bytes file = Encoded(samples, StandInCodec::Format(channels));
        for (const uint32_t byteRate : {0u, 1u, 5000u, 9000u, 18000u, 1000000u, 0xFFFFFFFFu}) {
            for (const int32_t piece : {7, 1000, 8192}) {
                LSoundSource source = OpenSource(WithByteRate(file, byteRate));
                EXPECT_EQ(ReadToEnd(source, piece), samples) << byteRate << " in " << piece;
                EXPECT_TRUE(source->IsWhole());
                EXPECT_EQ(source->GetLength(), 12003);
            }
        }
        Samples copied;
        NotingContext context;
        LSoundSource source = OpenSource(WithByteRate(file, 1000000));
        LPRSourceToSink copy(source,
                             LSoundSink::Make<CollectingSink>(8000, static_cast<uint8_t>(channels), copied));
        EXPECT_EQ(copy.Process(context), ProcessResult::Done);
        EXPECT_EQ(copied, samples);
    }
}

TEST(AcmSource, EstimatesTheLengthUntilItKnowsIt) {
    const Bytes file = Encoded(Ramp(20000));  // 22500 bytes
    static const struct {
        uint32_t byteRate;
        int32_t atStart, afterABlock;
    } kCases[] = {
        {9000, 20000, 20000},
        {4500, 40000, 8192 + 2 * (20000 - 8192)},
        {0, 22500, 21476},
        {0xFFFFFFFF, 1, 8193},
    };
    for (const auto& c : kCases) {
        LSoundSource source = OpenSource(WithByteRate(file, c.byteRate));
        EXPECT_EQ(source->GetLength(), c.atStart) << c.byteRate;
        Samples block(kBlockFrames);
        source->Read(block.data(), kBlockFrames);
        EXPECT_EQ(source->GetLength(), c.afterABlock) << c.byteRate;
    }
    EXPECT_EQ(OpenSource(Encoded({}))->GetLength(), 0);
    // Where the format tells its blocks, a byte rate four times too high must not hide three quarters.
    const LWaveFileFormat gsm(Hex("3100 0100 401F0000 64190000 4100 0000 0200 4001"));
    EXPECT_EQ(OpenSource(Encoded(Ramp(100 * 320), gsm))->GetLength(), 100 * 320);
    LSoundSource huge = OpenSource(WithByteRate(file, 1));
    EXPECT_EQ(huge->GetLength(), 22500 * 8000);
}

TEST(AcmSource, GoesByWhatItHasDecodedWhenTheByteRateIsWrong) {
    const Samples samples = Ramp(100000);
    for (const uint32_t byteRate : {2250u, 36000u}) {
        LSoundSource source = OpenSource(WithByteRate(Encoded(samples), byteRate));
        for (const int32_t to : {50000, 8000, 90000}) {
            source->Seek(to);
            EXPECT_EQ(source->GetLength(), 100000) << byteRate;
            Samples read(1000);
            source->Read(read.data(), 1000);
            EXPECT_EQ(read, Part(samples, to, 1000)) << to << " at " << byteRate;
        }
    }
    // A rate that varies has its average in the head; blocks of a quarter of the frames are not the rule.
    Bytes varying = Encoded(samples);
    for (size_t at = 49; at < 49 + 20000; at += 9) varying[at] = 2;
    LSoundSource source = OpenSource(WithByteRate(varying, 10385));
    for (const int32_t to : {30000, 50000, 80000}) {
        source->Seek(to);
        EXPECT_NEAR(source->GetLength(), 86662, 2000) << to;
    }
}

TEST(AcmSource, AnEstimateEndsNothing) {
    const Samples samples = Ramp(100000);
    // As if there were 66,667 frames.
    LSoundSource source = OpenSource(WithByteRate(Encoded(samples), 13500));
    source->Seek(80000);
    Samples last(8000);
    source->Read(last.data(), 8000);
    EXPECT_EQ(last, Part(samples, 87992, 8000));
    EXPECT_LT(source->GetPosition(), source->GetLength());
}

TEST(AcmSource, MissesWhatCannotBeReadButNoPartOfABlock) {
    const Bytes file = Encoded(Ramp(80000));
    const auto isWhole = [](Bytes bytes, size_t readable, uint16_t blockAlign) {
        std::ranges::copy(Little(blockAlign, 2), bytes.begin() + 32);
        auto stream = std::make_unique<DyingFile>(bytes);
        LWaveInfo info;
        EXPECT_TRUE(LWaveFile::ReadInfo(*stream, info));
        stream->DieAt(readable);
        LSoundSource source = LSoundSource::Make<LSRCACMWave>(std::move(stream), info, NineByteBlocks);
        ReadToEnd(source, kBlockFrames);
        return source->IsWhole();
    };
    // The block align of MP3, which has larger blocks nevertheless; and one that is too large.
    for (const uint16_t blockAlign : {uint16_t{1}, uint16_t{20000}}) {
        EXPECT_TRUE(isWhole(Bytes(file.begin(), file.end() - 5), file.size(), blockAlign)) << "cut off";
        EXPECT_FALSE(isWhole(file, file.size() - 5, blockAlign)) << "a block that cannot be read";
        const WithFault with(Fault::Fails, 9);
        EXPECT_FALSE(isWhole(file, file.size(), blockAlign)) << "a codec that fails";
    }
}

TEST(AcmSource, WaitsForACodecThatTakesAllAtOnce) {
    const Samples samples = Ramp(1000000);
    const Bytes file = Encoded(samples);
    const WithFault with(Fault::TakesAllAtOnce);
    LSoundSource source = OpenSource(file);
    EXPECT_EQ(ReadToEnd(source, kBlockFrames), samples);
    EXPECT_TRUE(source->IsWhole());
}

TEST(AcmSource, ReadsAfterASeekWhatAnUninterruptedRunReadsThere) {
    const LWaveFileFormat gsm(Hex("3100 0100 112B0000 BF080000 4100 0000 0200 4001"));
    const Samples samples = Ramp(100 * 320);
    struct Case {
        Bytes file;
        int32_t frames;
    } cases[] = {
        {Encoded(samples), 100 * 320},
        // A byte rate that is rounded, or plainly wrong, does not matter where the format tells its blocks.
        {Encoded(samples, gsm), 100 * 320},
        {WithByteRate(Encoded(samples, gsm), 999), 100 * 320},
    };
    for (const Case& c : cases) {
        LSoundSource source = OpenSource(c.file);
        const Samples all = ReadToEnd(source, 1000);
        ASSERT_EQ(all.size(), static_cast<size_t>(c.frames));
        for (const int32_t to :
             {0, 1, 8, 7, 319, 320, 321, 8191, 8192, 12345, 31999, 32000, 5, -3, -2000, 0}) {
            source->Seek(to);
            EXPECT_EQ(source->GetPosition(), to);
            Samples read(1000);
            source->Read(read.data(), 1000);
            EXPECT_EQ(read, Part(all, to, 1000)) << to;
            EXPECT_EQ(source->GetPosition(), to + 1000);
        }
        for (const int32_t beyond : {32400, 1000000, INT32_MAX}) {
            source->Seek(beyond);
            EXPECT_EQ(source->GetLength(), c.frames) << beyond;
            Samples read(10, 1);
            source->Read(read.data(), 10);
            EXPECT_EQ(read, Samples(10)) << beyond;
        }
        source->Seek(INT32_MIN);
        EXPECT_GE(source->GetLength(), 1);
    }
    StandInCodec::restarts = 0;
    OpenSource(cases[0].file)->Seek(100);
    EXPECT_EQ(StandInCodec::restarts, 0) << "a fresh codec needs no restart";
}

TEST(Acm, AMisbehavingCodecEndsTheMaterialOrTheFileAndNothingElse) {
    const Samples samples = Ramp(20000);
    const Bytes file = Encoded(samples);
    for (int fault = static_cast<int>(Fault::Fails); fault < StandInCodec::kFaults; ++fault) {
        for (const int after : {0, 3}) {
            const WithFault with(static_cast<Fault>(fault), after);
            LSoundSource source = OpenSource(file);
            const Samples read = ReadToEnd(source, kBlockFrames);
            EXPECT_LE(read.size(), samples.size() + 65 * 4 * 8) << fault;
            // Whatever a codec does, a source that did not get through all of it says so.
            EXPECT_TRUE(!source->IsWhole() || read.size() >= samples.size() ||
                        fault == static_cast<int>(Fault::YieldsNothing) ||
                        fault == static_cast<int>(Fault::OddBytes))
                << fault;
            source->Seek(10000);
            source->Read(Samples(100).data(), 100);

            LMemoryFile out;
            LSoundSink sink = OpenSink(out);
            for (int i = 0; i < 3; ++i) sink->Write(samples.data(), 8192);
            sink.Reset();
            LWaveInfo info;
            ASSERT_TRUE(LWaveFile::ReadInfo(out, info)) << fault;
            EXPECT_EQ(info.dataStart + info.dataBytes, out.Size()) << fault;
            EXPECT_FALSE(info.isStreaming) << fault;
        }
    }
    for (const Fault fault : {Fault::Fails, Fault::ConsumesTooMuch, Fault::YieldsTooMuch}) {
        const WithFault with(fault, 2);
        TraceLog log;
        LSoundSource source = OpenSource(file);
        EXPECT_LT(ReadToEnd(source, 5000).size(), samples.size());
        EXPECT_FALSE(source->IsWhole());
        EXPECT_TRUE(log.Has("LSRCACMWave::Read acmStreamConvert FAILED"));
        EXPECT_TRUE(log.Has("LSRCACMWave::Read End Reached"));
    }
}

TEST(AcmRecord, GivesCodecsOnlyRecordsThatHoldTogether) {
    const std::string guid = " 0000 0000 1000 8000 00AA00389B71";
    const std::string pairs = "0700 0001 0000 0002 00FF 0000 0000 C000 4000 F000 0000 CC01 30FF 8801 18FF";
    static const std::string kIma = "1100 0100 401F0000 D70F0000 0001 0400 ";
    const struct {
        const char* what;
        std::string record, expected;
        int32_t blockFrames;
    } cases[] = {
        {"16 bytes", "0700 0100 401F0000 401F0000 0100 0800", "0700 0100 401F0000 401F0000 0100 0800 0000",
         1},
        {"extensible PCM", "FEFF 0200 401F0000 80BB0000 0600 1800 1600 1800 03000000 0100" + guid,
         "0100 0200 401F0000 80BB0000 0600 1800 0000", 1},
        {"extensible A-law", "FEFF 0200 401F0000 803E0000 0200 0800 1600 0800 03000000 0600" + guid,
         "0600 0200 401F0000 803E0000 0200 0800 0000", 1},
        {"another family",
         "FEFF 0100 401F0000 80BB0000 0300 1800 1600 1800 03000000 0100" + guid.substr(0, 20) + "FF",
         "FEFF 0100 401F0000 80BB0000 0300 1800 1600 1800 03000000 0100" + guid.substr(0, 20) +
             "FF000000 0000",
         0},
        {"PCM whose block lies", "0100 0200 401F0000 01000000 0000 1800 0000",
         "0100 0200 401F0000 80BB0000 0600 1800 0000", 1},
        {"PCM of no width", "0100 0200 401F0000 01000000 0400 0000 0000",
         "0100 0200 401F0000 01000000 0000 0000 0000", 0},
        {"PCM of six channels", "0100 0600 401F0000 00770100 0C00 1000 0000",
         "0100 0600 401F0000 00770100 0C00 1000 0000", 0},
        {"IMA", kIma + "0200 F901", kIma + "0200 F901", 505},
        {"IMA without its field", kIma + "0000", kIma + "0200 F901", 505},
        {"IMA that promises more than it holds", kIma + "0200 FFFF", kIma + "0200 F901", 505},
        {"IMA that promises less than it holds", kIma + "0200 0100", kIma + "0200 F901", 505},
        {"IMA of more frames than 16 bits count", "1100 0100 00000200 00000000 FCFF 0400 0200 0100",
         "1100 0100 00000200 00000200 0000 0400 0000", 0},
        {"IMA without a block", "1100 0100 401F0000 D70F0000 0400 0400 0200 F901",
         "1100 0100 401F0000 D70F0000 0000 0400 0000", 0},
        {"GSM of two channels", "3100 0200 401F0000 59060000 4100 0000 0200 4001",
         "3100 0200 401F0000 59060000 0000 0000 0000", 0},
        {"GSM whose byte rate is rounded up", "3100 0100 22560000 7F110000 4100 0000 0200 4001",
         "3100 0100 22560000 7E110000 4100 0000 0200 4001", 320},
        {"IMA whose byte rate would not fit", "1100 0100 00000200 00000000 0080 0400 0200 0100",
         "1100 0100 00000200 07000100 0080 0400 0200 F9FF", 65529},
        {"GSM of one frame", "3100 0100 401F0000 59060000 4100 0000 0200 0100",
         "3100 0100 401F0000 59060000 4100 0000 0200 4001", 320},
        {"GSM in another block", "3100 0100 401F0000 59060000 6400 0000 0200 4001",
         "3100 0100 401F0000 59060000 0000 0000 0000", 0},
        {"MP3 without a byte rate", "5500 0100 22560000 00000000 4002 0000 0200 0100",
         "5500 0100 22560000 22560000 4002 0000 0200 0100", 0},
        {"A-law whose block lies", "0600 0200 401F0000 00000000 0100 0800 0000",
         "0600 0200 401F0000 803E0000 0200 0800 0000", 1},
        {"MS ADPCM without coefficients", "0200 0200 112B0000 192C0000 0002 0400 0400 F401 0000",
         "0200 0200 112B0000 192C0000 0002 0400 2000 F401 " + pairs, 500},
        {"MS ADPCM of 65536 frames", "0200 0100 401F0000 A00F0000 0680 0400 0000",
         "0200 0100 401F0000 A00F0000 0000 0400 0000", 0},
        {"MS ADPCM of 65554 frames", "0200 0100 401F0000 A00F0000 0F80 0400 2000 1300 " + pairs,
         "0200 0100 401F0000 A00F0000 0000 0400 0000", 0},
    };
    for (const auto& c : cases) {
        const LWaveFileFormat record = LAcmRecord(LWaveFileFormat(Hex(c.record)));
        EXPECT_EQ(Bytes(record.Record().begin(), record.Record().end()), Hex(c.expected)) << c.what;
        EXPECT_EQ(LAcmMayConvert(record) ? LAcmBlockFrames(record) : 0, c.blockFrames) << c.what;
    }
    // An extra byte count beyond the record, with and without an unknown sub-format.
    for (const char* tag : {"5500", "FEFF"}) {
        Bytes endless(1024);
        std::ranges::copy(Hex(tag + std::string("0100 401F0000 D70F0000 0100 0000 FFFF")), endless.begin());
        const LWaveFileFormat record = LAcmRecord(LWaveFileFormat(endless));
        EXPECT_EQ(Bytes(record.Bytes().begin() + 16, record.Bytes().begin() + 18), Little(1006, 2)) << tag;
    }
}

TEST(RewriteWave, DecodesEveryOtherFormatToTheEndOrLeavesItAlone) {
    const Samples samples = Ramp(20001 * 2);
    const Bytes compressed = Encoded(samples, StandInCodec::Format(2));
    const Bytes extensible = WaveFile(Chunk("fmt ", Hex("FEFF 0100 401F0000 C05D0000 0300 1800 1600 1800 "
                                                        "04000000 0100 0000 0000 1000 8000 00AA00389B71")) +
                                      Chunk("data", Hex("7F0001 800001")));
    const auto rewrite = [](const Bytes& before, ProcessResult expected) {
        const ScratchFile file(before);
        NotingContext context;
        EXPECT_EQ(LRewriteWave(file.path, StandInCodec::Open).Process(context), expected);
        EXPECT_EQ(TempFolder::Names(file.folder.Path()).size(), 1u);
        return file.Contents();
    };
    Bytes pcm;
    for (const int32_t sample : samples)
        pcm = std::move(pcm) + Little(static_cast<uint16_t>(ToPcm16(sample)), 2);
    EXPECT_EQ(rewrite(compressed, ProcessResult::Done), WaveFile(PcmFormat(16, 18, 2) + Chunk("data", pcm)));
    EXPECT_EQ(rewrite(WithByteRate(compressed, 1000000), ProcessResult::Done),
              WaveFile(PcmFormat(16, 18, 2) + Chunk("data", pcm)));
    EXPECT_EQ(rewrite(extensible, ProcessResult::Done), Wave16(Hex("0001 0101")));
    for (const Fault fault :
         {Fault::NoCodec, Fault::Fails, Fault::YieldsAndConsumesNothing, Fault::YieldsTooMuch}) {
        const WithFault with(fault, 2);
        EXPECT_EQ(rewrite(compressed, ProcessResult::Failed), compressed) << static_cast<int>(fault);
    }
}
