#include <algorithm>
#include <memory>
#include <vector>

#include "audio/wave/LAcmRecord.h"
#include "audio/wave/LWaveFile.h"
#include "base/LMemoryFile.h"
#include "tests/fuzz/Fuzz.h"
#include "tests/stubs/StandInCodec.h"

// What was read without a seek must come again after one.
static void CompareRereading(LSoundSource source, const std::vector<int32_t>& first, int32_t frames) {
    std::vector<int32_t> again(first.size());
    source->Seek(0);
    source->Read(again.data(), frames);
    Require(again == first && source->GetPosition() == frames);
}

// What a codec is given holds together, whatever stands in the file.
static void RequireSafeRecord(const LWaveFileFormat& format) {
    const LWaveFileFormat record = LAcmRecord(format);
    const std::span<const uint8_t> count = record.Bytes().subspan(16, 2);
    Require(size_t{count[0]} + size_t{count[1]} * 256 == record.ExtraBytes());
    Require(LAcmBlockFrames(record) >= 0 && LAcmBlockFrames(record) <= 0xFFFF);
    Require(record.AverageBytesPerSecond() > 0 || record.BlockAlign() == 0 || record.SampleRate() == 0);
    if (record.Tag() == kFormatTagPcm && record.BlockAlign() > 0)
        Require(record.BlockAlign() == record.Channels() * record.BitsPerSample() / 8);
}

// Decodes two blocks of the data with a codec that computes as the platform's does; the sanitizers watch it.
static void DecodeTwoBlocks(const LWaveFileFormat& format) {
    const LWaveFileFormat record = LAcmRecord(format);
    std::unique_ptr<LAcmConversion> codec;
    if (record.Tag() != StandInCodec::kMsAdpcm || !LAcmMayConvert(record) ||
        !StandInCodec::Open(record, LAcmPcm(record), LAcmTiming::RealTime, codec))
        return;
    const uint32_t align = record.BlockAlign();
    std::vector<uint8_t> input(size_t{align} * 2, 0xFF);
    std::vector<uint8_t> output(codec->OutputSize(align));
    Require(codec->InputSize(static_cast<uint32_t>(output.size())) >= align);
    LAcmConversion::Used used;
    Require(codec->Prepare(input, output) &&
            codec->Convert(2 * align, LAcmConversion::Flag::BlockAlign, used));
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::span<const uint8_t> bytes(data, size);
    LMemoryFile file(bytes);
    LWaveInfo info;
    const bool readable = LWaveFile::ReadInfo(file, info);
    const bool isDirect = readable && info.IsPcm() && info.BytesPerSample() <= 2;
    LSoundSource source = LWaveFile::OpenSource(std::make_unique<LMemoryFile>(bytes));
    Require(source->IsError() == !isDirect);
    Require(info.dataStart >= 0 && info.dataBytes >= 0 && info.Frames() >= 0 && info.LengthMs() >= 0);
    Require(!readable || info.dataStart + info.dataBytes <= file.Size());
    RequireSafeRecord(info.format);
    DecodeTwoBlocks(info.format);
    if (!isDirect) return 0;

    Require(source->GetLength() == info.Frames() && source->GetChannels() == info.format.Channels());
    Require(LWaveFile::TestPCM(file));
    std::vector<int32_t> first(size_t{kBlockFrames} * source->GetChannels());
    std::vector<int32_t> block(first.size());
    source->Read(first.data(), kBlockFrames);
    for (int i = 0; i < 8 && source->GetPosition() < source->GetLength(); ++i)
        source->Read(block.data(), kBlockFrames);
    Require(source->GetPosition() >= kBlockFrames && source->GetLength() >= 0);
    CompareRereading(source, first, kBlockFrames);
    source->Seek(source->GetLength());
    source->Read(block.data(), 1);
    for (int i = 0; i < source->GetChannels(); ++i) Require(block[static_cast<size_t>(i)] == 0);
    return 0;
}
