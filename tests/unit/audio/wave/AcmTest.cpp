#include "audio/wave/LAcmRecord.h"
#include "audio/wave/LRewriteWave.h"
#include "audio/wave/LSNKACMFile.h"
#include "audio/wave/LSRCACMWave.h"
#include "tests/stubs/StandInCodec.h"
#include "tests/unit/audio/SoundKit.h"

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
};

const LWaveFileFormat kGsm(Hex("3100 0100 401F0000 59060000 4100 0000 0200 4001"));

// What the stand-in codec can carry without loss, different in every frame of a block.
Samples Speech(int32_t values) {
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
    for (size_t at = 0; at < samples.size(); at += 777 * channels) {
        const size_t count = std::min<size_t>(samples.size() - at, 777 * channels);
        sink->Write(&samples[at], static_cast<int32_t>(count / channels));
    }
    EXPECT_EQ(sink->GetFrames(), static_cast<int32_t>(samples.size() / channels));
    sink.Reset();
    return FileBytes(file);
}

// With another byte rate in its head.
Bytes With(Bytes file, uint32_t byteRate) {
    std::ranges::copy(Little(byteRate), file.begin() + 28);
    return file;
}

// Everything up to the end, read in pieces of that size. No length may lie at or below a position with more
// behind it.
Samples ReadToEnd(LSoundSource& source, int32_t piece = 1000) {
    Samples all;
    for (int reads = 0; source->GetPosition() < source->GetLength() && reads < 100000; ++reads) {
        const Samples more = ReadFrames(*source, piece, piece);
        all.insert(all.end(), more.begin(), more.end());
    }
    EXPECT_LE(source->GetLength(), source->GetPosition());
    all.resize(static_cast<size_t>(source->GetLength()) * source->GetChannels());
    return all;
}

// With silence around it.
Samples Part(const Samples& all, int32_t from, int32_t count) {
    Samples part(static_cast<size_t>(count));
    for (int32_t i = std::max(-from, 0); i < count && from + i < static_cast<int32_t>(all.size()); ++i)
        part[static_cast<size_t>(i)] = all[static_cast<size_t>(from + i)];
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
    const Samples nine = Speech(9);
    sink->Write(nine.data(), 9);
    EXPECT_EQ(file.Size(), 49 + 9) << "a block as soon as it is full";
    LSoundSource reader = OpenSource(FileBytes(file));
    EXPECT_EQ(ReadToEnd(reader), Part(nine, 0, 8)) << "readable while it is written";
    sink.Reset();
    EXPECT_EQ(FileBytes(file),
              head(Little(41 + 18), Little(18)) + Hex("08 80878E959CA3AAB1 01 B8") + Bytes(7));
}

TEST(Acm, LosesNothingWhateverTheCodecHoldsBack) {
    for (const Fault fault : {Fault::None, Fault::OneBlockAtATime, Fault::HoldsBackABlock,
                              Fault::OnlyNonRealTime, Fault::RefusesNothing, Fault::TakesAllAtOnce}) {
        const WithFault with(fault);
        const Samples samples = Speech(fault == Fault::TakesAllAtOnce ? 1000000 : 20001);
        LSoundSource source = OpenSource(Encoded(samples));
        EXPECT_EQ(ReadToEnd(source), samples) << static_cast<int>(fault);
        EXPECT_TRUE(source->IsWhole());
    }
    for (const int32_t piece : {7, 8192}) {
        LSoundSource source = OpenSource(With(Encoded(Speech(12003)), piece == 7 ? 0 : 0xFFFFFFFF));
        EXPECT_EQ(ReadToEnd(source, piece), Speech(12003)) << piece;
    }
    // A codec that leaves the last block open: filled with silence where the format tells its length.
    const WithFault with(Fault::LeavesPartialBlocks);
    LSoundSource source = OpenSource(Encoded(Speech(321), kGsm));
    EXPECT_EQ(ReadToEnd(source).size(), 640u);
}

TEST(AcmSink, OnAFullDiskHeadAndDataAgreeAndALostEndKeepsTheSizesUnknown) {
    const Samples samples = Speech(100);
    for (const size_t capacity : {20u, 48u, 49u, 60u, 100u}) {
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
        EXPECT_EQ(Bytes(&file.View()[45], &file.View()[49]), Little(static_cast<uint32_t>(data)));
        LSoundSource source = OpenSource(FileBytes(file));
        EXPECT_EQ(ReadToEnd(source), Part(samples, 0, static_cast<int32_t>(data / 9 * 8)));
    }
    LMemoryFile file;
    file.SetCapacity(49 + 9);
    LSoundSink sink = OpenSink(file);
    sink->Write(samples.data(), 9);
    EXPECT_FALSE(sink->IsError());
    sink.Reset();
    EXPECT_EQ(Bytes(&file.View()[45], &file.View()[49]), Little(0xFFFFFFFF));
}

TEST(Acm, SaysWhyItCannotBegin) {
    const Bytes good = Encoded(Speech(100));
    for (const Fault fault :
         {Fault::NoCodec, Fault::NoHandle, Fault::NoSize, Fault::AbsurdSize, Fault::NoPrepare}) {
        const WithFault with(fault);
        TraceLog log;
        LMemoryFile file;
        EXPECT_TRUE(OpenSink(file)->IsError() && log.All().starts_with("LSNKACMFile::LSNKACMFile acmStream"));
        EXPECT_EQ(file.Size(), 0);
        LSoundSource source = OpenSource(good);
        EXPECT_TRUE(source->IsError());
        source->Seek(50);
        EXPECT_EQ(source->GetLength(), 0);
        EXPECT_NE(log.All().find("\nLSRCACMWave::LSRCACMWave acmStream"), std::string::npos);
    }
}

TEST(AcmSource, EstimatesTheLengthUntilItKnowsIt) {
    const Bytes file = Encoded(Speech(20000));  // 22500 bytes
    LSoundSource source = OpenSource(With(file, 4500));
    EXPECT_EQ(source->GetLength(), 40000);
    ReadFrames(*source, kBlockFrames, kBlockFrames);
    EXPECT_EQ(source->GetLength(), 8192 + 2 * (20000 - 8192));
    EXPECT_EQ(OpenSource(With(file, 1))->GetLength(), 22500 * 8000);
    EXPECT_EQ(OpenSource(Encoded({}))->GetLength(), 0);
    // Where the format tells its blocks, a byte rate four times too high must not hide three quarters.
    EXPECT_EQ(OpenSource(With(Encoded(Speech(100 * 320), kGsm), 6500))->GetLength(), 100 * 320);
}

TEST(AcmSource, GoesByWhatItHasDecodedWhenTheByteRateIsWrong) {
    const Samples samples = Speech(100000);
    for (const uint32_t byteRate : {2250u, 36000u}) {
        LSoundSource source = OpenSource(With(Encoded(samples), byteRate));
        for (const int32_t to : {50000, 8000, 90000}) {
            source->Seek(to);
            EXPECT_EQ(source->GetLength(), 100000) << byteRate;
            EXPECT_EQ(ReadFrames(*source, 1000), Part(samples, to, 1000)) << to << " at " << byteRate;
        }
    }
    // A rate that varies has its average in the head; blocks of a quarter of the frames are not the rule.
    Bytes varying = Encoded(samples);
    for (size_t at = 49; at < 49 + 20000; at += 9) varying[at] = 2;
    LSoundSource source = OpenSource(With(varying, 10385));
    for (const int32_t to : {30000, 50000, 80000}) {
        source->Seek(to);
        EXPECT_NEAR(source->GetLength(), 86662, 2000) << to;
    }
}

TEST(AcmSource, MissesWhatCannotBeReadButNoPartOfABlock) {
    const Bytes file = Encoded(Speech(80000));
    const auto isWhole = [](Bytes bytes, size_t readable, uint16_t blockAlign) {
        std::ranges::copy(Little(blockAlign, 2), bytes.begin() + 32);
        LMemoryFile memory(bytes);
        auto stream = Borrow(memory);
        LWaveInfo info;
        EXPECT_TRUE(LWaveFile::ReadInfo(*stream, info));
        stream->readable = static_cast<int64_t>(readable);
        const LAcmOpener nineByteBlocks = [](const LWaveFileFormat&, const LWaveFileFormat& to,
                                             LAcmTiming timing, std::unique_ptr<LAcmConversion>& conversion) {
            return StandInCodec::Open(StandInCodec::Format(), to, timing, conversion);
        };
        LSoundSource source = LSoundSource::Make<LSRCACMWave>(std::move(stream), info, nineByteBlocks);
        ReadToEnd(source);
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

// A byte rate that is plainly wrong does not matter where the format tells its blocks.
TEST(AcmSource, ReadsAfterASeekWhatAnUninterruptedRunReadsThere) {
    const Samples samples = Speech(100 * 320);
    for (const Bytes& file : {Encoded(samples), With(Encoded(samples, kGsm), 999)}) {
        LSoundSource source = OpenSource(file);
        const Samples all = ReadToEnd(source);
        ASSERT_EQ(all.size(), samples.size());
        for (const int32_t to :
             {0, 1, 8, 7, 319, 320, 321, 8191, 8192, 12345, 31999, 32000, 5, -3, -2000, 0}) {
            source->Seek(to);
            EXPECT_EQ(source->GetPosition(), to);
            EXPECT_EQ(ReadFrames(*source, 1000, 1000), Part(all, to, 1000)) << to;
            EXPECT_EQ(source->GetPosition(), to + 1000);
        }
        for (const int32_t beyond : {32400, 1000000, INT32_MAX}) {
            source->Seek(beyond);
            EXPECT_EQ(source->GetLength(), 32000) << beyond;
            EXPECT_EQ(ReadFrames(*source, 10), Samples(10)) << beyond;
        }
        source->Seek(INT32_MIN);
        EXPECT_GE(source->GetLength(), 1);
    }
    StandInCodec::restarts = 0;
    OpenSource(Encoded(samples))->Seek(100);
    EXPECT_EQ(StandInCodec::restarts, 0) << "a fresh codec needs no restart";
}

TEST(Acm, AMisbehavingCodecEndsTheMaterialOrTheFileAndNothingElse) {
    const Samples samples = Speech(20000);
    const Bytes file = Encoded(samples);
    for (int number = static_cast<int>(Fault::Fails); number < StandInCodec::kFaults; ++number) {
        for (const int after : {0, 3}) {
            const Fault fault = static_cast<Fault>(number);
            const WithFault with(fault, after);
            LSoundSource source = OpenSource(file);
            const Samples read = ReadToEnd(source, kBlockFrames);
            EXPECT_LE(read.size(), samples.size() + 65 * 4 * 8) << number;
            // Whatever a codec does, a source that did not get through all of it says so.
            EXPECT_TRUE(!source->IsWhole() || read.size() >= samples.size() ||
                        fault == Fault::YieldsNothing || fault == Fault::OddBytes)
                << number;
            source->Seek(10000);
            ReadFrames(*source, 100);

            LMemoryFile out;
            LSoundSink sink = OpenSink(out);
            for (int i = 0; i < 3; ++i) sink->Write(samples.data(), 8192);
            sink.Reset();
            LWaveInfo info;
            ASSERT_TRUE(LWaveFile::ReadInfo(out, info)) << number;
            EXPECT_EQ(info.dataStart + info.dataBytes, out.Size()) << number;
            EXPECT_FALSE(info.isStreaming) << number;
        }
    }
}

static Bytes Record(uint32_t tag, uint32_t channels, uint32_t rate, uint32_t byteRate, uint32_t align,
                    uint32_t bits, const std::string& extra) {
    const Bytes behind = Hex(extra);
    return Little(tag, 2) + Little(channels, 2) + Little(rate) + Little(byteRate) + Little(align, 2) +
           Little(bits, 2) + Little(static_cast<uint32_t>(behind.size()), 2) + behind;
}

TEST(AcmRecord, GivesCodecsOnlyRecordsThatHoldTogether) {
    const std::string pairs = "0700 0001 0000 0002 00FF 0000 0000 C000 4000 F000 0000 CC01 30FF 8801 18FF";
    const struct {
        const char* what;
        uint32_t tag, channels, rate, byteRate, align, bits;
        std::string extra;
        uint32_t trueByteRate, trueAlign;
        std::string trueExtra;
        int32_t blockFrames;
    } cases[] = {
        {"PCM whose block lies", 1, 2, 8000, 1, 0, 24, "", 48000, 6, "", 1},
        {"PCM of no width", 1, 2, 8000, 1, 4, 0, "", 1, 0, "", 0},
        {"PCM of six channels", 1, 6, 8000, 96000, 12, 16, "", 96000, 12, "", 0},
        {"A-law whose block lies", 6, 2, 8000, 0, 1, 8, "", 16000, 2, "", 1},
        {"IMA without its field", 0x11, 1, 8000, 4055, 256, 4, "", 4055, 256, "F901", 505},
        {"IMA that promises too much", 0x11, 1, 8000, 4055, 256, 4, "FFFF", 4055, 256, "F901", 505},
        {"IMA of frames beyond 16 bits", 0x11, 1, 131072, 0, 65532, 4, "0100", 131072, 0, "", 0},
        {"IMA of a low byte rate", 0x11, 1, 131072, 0, 32768, 4, "0100", 65543, 32768, "F9FF", 65529},
        {"IMA of one frame a second", 0x11, 1, 1, 0, 49, 4, "0100", 1, 49, "5900", 89},
        {"GSM of two channels", 0x31, 2, 8000, 1625, 65, 0, "4001", 1625, 0, "", 0},
        {"GSM whose byte rate is rounded", 0x31, 1, 22050, 4479, 65, 0, "4001", 4478, 65, "4001", 320},
        {"GSM in another block", 0x31, 1, 8000, 1625, 100, 0, "4001", 1625, 0, "", 0},
        {"MP3 without a byte rate", 0x55, 1, 22050, 0, 576, 0, "0100", 22050, 576, "0100", 0},
        {"MS ADPCM alone", 2, 2, 11025, 11289, 512, 4, "F401 0000", 11289, 512, "F401" + pairs, 500},
        {"MS ADPCM of 65554 frames", 2, 1, 8000, 4000, 32783, 4, "1300" + pairs, 4000, 0, "", 0},
    };
    for (const auto& c : cases) {
        const LWaveFileFormat record = LAcmRecord(
            LWaveFileFormat(Record(c.tag, c.channels, c.rate, c.byteRate, c.align, c.bits, c.extra)));
        EXPECT_EQ(Bytes(record.Record().begin(), record.Record().end()),
                  Record(c.tag, c.channels, c.rate, c.trueByteRate, c.trueAlign, c.bits, c.trueExtra))
            << c.what;
        EXPECT_EQ(LAcmMayConvert(record) ? LAcmBlockFrames(record) : 0, c.blockFrames) << c.what;
    }
}

TEST(AcmRecord, TakesThePlainTagOutOfAnExtensibleRecord) {
    const std::string head = "FEFF 0200 401F0000 80BB0000 0600 1800 1600 1800 03000000 0100 0000 0000 1000";
    const std::pair<std::string, std::string> cases[] = {
        {"0700 0100 401F0000 401F0000 0100 0800", "0700 0100 401F0000 401F0000 0100 0800 0000"},  // 16 bytes
        {head + "8000 00AA00389B71", "0100 0200 401F0000 80BB0000 0600 1800 0000"},
        {head + "8000 00AA00389B72", head + "8000 00AA00389B72"},  // of another family
    };
    for (const auto& [told, expected] : cases) {
        const LWaveFileFormat record = LAcmRecord(LWaveFileFormat(Hex(told)));
        EXPECT_EQ(Bytes(record.Record().begin(), record.Record().end()), Hex(expected)) << told;
    }
}

TEST(RewriteWave, BringsEveryFileIntoOurLayoutOrLeavesItAlone) {
    const Bytes list = Chunk("LIST", Bytes(5)), fmt16 = PcmFormat(16),
                fmt8Stereo = PcmFormat(8, 18, 2, 11025);
    const Bytes data = Chunk("data", Hex("0100 0200")),
                open = Text("data") + Little(0xFFFFFFFF) + Hex("0100 0200");
    const Bytes extensible = Chunk("fmt ", Hex("FEFF 0100 401F0000 C05D0000 0300 1800 1600 1800 04000000 "
                                               "0100 0000 0000 1000 8000 00AA00389B71"));
    const Samples samples = Speech(40001 * 2);
    const Bytes compressed = Encoded(samples, StandInCodec::Format(2));
    Bytes pcm;
    for (const int32_t v : samples) pcm = std::move(pcm) + Little(static_cast<uint16_t>(ToPcm16(v)), 2);
    const Bytes decoded = WaveFile(PcmFormat(16, 18, 2) + Chunk("data", pcm));
    constexpr auto kDone = ProcessResult::Done, kFailed = ProcessResult::Failed,
                   kStopped = ProcessResult::Stopped;
    const struct {
        const char* what;
        Bytes before, after;
        Fault fault = Fault::None;
        ProcessResult result = kDone;
    } cases[] = {
        {"long", WaveFile(PcmFormat(16, 16, 2) + Chunk("data", pcm)), decoded},
        {"chunks and open", WaveFile(list + fmt16 + list + open), Wave16(Hex("0100 0200"))},
        {"12 bits", WaveFile(PcmFormat(12) + data), Wave16(Hex("0100 0200"))},
        {"8 bits", WaveFile(fmt8Stereo + list + Chunk("data", Hex("00 FF 80 7F"))),
         WaveFile(fmt8Stereo + Chunk("data", Hex("00 FF 80 7F")))},
        // 24 and 32 bits round to the nearest, the top of the range holds.
        {"24 bits", WaveFile(PcmFormat(24) + Chunk("data", Hex("7F0001 800001 FFFF7F 000080 7FFF7F 80FF00"))),
         Wave16(Hex("0001 0101 FF7F 0080 FF7F 0001"))},
        {"32 bits", WaveFile(PcmFormat(32) + Chunk("data", Hex("FF7F0100 00800100 FFFFFF7F 00000080"))),
         Wave16(Hex("0100 0200 FF7F 0080"))},
        {"extensible", WaveFile(extensible + Chunk("data", Hex("7F0001 800001"))), Wave16(Hex("0001 0101"))},
        {"compressed", compressed, decoded},
        {"wrong byte rate", With(compressed, 1000000), decoded},
        {"ours", WaveFile(fmt16 + open), WaveFile(fmt16 + open)},
        {"stopped", WaveFile(fmt16 + data + list), WaveFile(fmt16 + data + list), Fault::None, kStopped},
        {"no codec", compressed, compressed, Fault::NoCodec, kFailed},
        {"failing codec", compressed, compressed, Fault::Fails, kFailed},
        {"stuck codec", compressed, compressed, Fault::YieldsAndConsumesNothing, kFailed},
        {"boasting codec", compressed, compressed, Fault::YieldsTooMuch, kFailed},
    };
    for (const auto& c : cases) {
        const WithFault with(c.fault, 2);
        const ScratchFile file(c.before);
        NotingContext context;
        context.cancelAfter = c.result == kStopped ? 0 : -1;
        EXPECT_EQ(LRewriteWave(file.path, StandInCodec::Open).Process(context), c.result) << c.what;
        EXPECT_TRUE(file.Contents() == c.after) << c.what;
        EXPECT_EQ(TempFolder::Names(file.folder.Path()).size(), 1u) << c.what;
        EXPECT_EQ(context.errors.empty(), c.result != kFailed) << c.what;
    }
}
