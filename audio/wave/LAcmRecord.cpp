#include "audio/wave/LAcmRecord.h"

#include <algorithm>
#include <array>
#include <limits>

#include "audio/stream/LSample.h"
#include "base/LArith.h"
#include "base/LBytes.h"

// The mending of format records. The samples per block and the byte rate are computed again rather than
// checked: common writers store wrong ones, and their files should play. A record that cannot be mended is
// refused by block align 0. A file of 60 bytes with 65,536 frames in a block once ended the program in a
// codec, which computes the count in 16 bits and divides by it.

namespace {

constexpr uint16_t kTagMsAdpcm = 0x0002;
constexpr uint16_t kTagALaw = 0x0006;
constexpr uint16_t kTagMuLaw = 0x0007;
constexpr uint16_t kTagImaAdpcm = 0x0011;
constexpr uint16_t kTagGsm610 = 0x0031;
constexpr uint16_t kTagExtensible = 0xFFFE;

// The extra bytes of an extensible record: valid bits u16, channel mask u32, sub-format identifier (16
// bytes). An identifier of the standard family is the plain tag u16 followed by these 14 bytes.
constexpr size_t kSubFormatOffset = LWaveFileFormat::kFixedSize + 6;
constexpr uint16_t kExtensibleExtra = 22;
constexpr std::array<uint8_t, 14> kStandardFamily = {0, 0, 0,    0,    0x10, 0,    0x80,
                                                     0, 0, 0xAA, 0x00, 0x38, 0x9B, 0x71};

// The extra bytes of Microsoft ADPCM: samples per block u16, number of coefficient pairs u16, then the pairs.
// The format's definition lays down these seven pairs; a file may add its own behind them.
constexpr size_t kMsAdpcmPairsOffset = 4;
constexpr size_t kMsAdpcmPairBytes = 4;
constexpr std::array<int16_t, 14> kMsAdpcmPairs = {256, 0,   512, -256, 0,    0,   192,
                                                   64,  240, 0,   460,  -208, 392, -232};

// Frames in a block of each codec, 0 when the block is too short or none of the codec's. For each channel a
// block of Microsoft ADPCM has 7 header bytes with 2 samples, then 4 bits a sample; one of IMA ADPCM 4 header
// bytes with 1 sample, then groups of 4 bytes with 8 samples. GSM 6.10 packs two frames of 160 samples into
// 65 bytes.
int32_t MsAdpcmFrames(int32_t align, int32_t channels) {
    return align <= 7 * channels ? 0 : (align - 7 * channels) * 2 / channels + 2;
}
int32_t ImaAdpcmFrames(int32_t align, int32_t channels) {
    return align <= 4 * channels ? 0 : (align - 4 * channels) / (4 * channels) * 8 + 1;
}
int32_t Gsm610Frames(int32_t align, int32_t channels) {
    return channels == 1 && align == 65 ? 320 : 0;
}

// The G.711 laws: one byte for each sample.
bool IsLaw(uint16_t tag) {
    return tag == kTagALaw || tag == kTagMuLaw;
}

struct BlockCodec {
    uint16_t tag;
    int32_t (*frames)(int32_t align, int32_t channels);
};
constexpr BlockCodec kBlockCodecs[] = {
    {kTagMsAdpcm, MsAdpcmFrames},
    {kTagImaAdpcm, ImaAdpcmFrames},
    {kTagGsm610, Gsm610Frames},
};

const BlockCodec* FindBlockCodec(uint16_t tag) {
    const auto* found = std::ranges::find(kBlockCodecs, tag, &BlockCodec::tag);
    return found == std::end(kBlockCodecs) ? nullptr : found;
}

// The frames in a block of the record's size. 0 when there can be none, also when the count exceeds its
// field: codecs compute with the field's 16 bits, and divide by the result.
uint16_t TrueBlockFrames(const BlockCodec& codec, const LWaveFileFormat& format) {
    if (format.Channels() == 0) return 0;
    const int32_t frames = codec.frames(format.BlockAlign(), format.Channels());
    return frames > std::numeric_limits<uint16_t>::max() ? uint16_t{0} : static_cast<uint16_t>(frames);
}

uint16_t SamplesPerBlock(const LWaveFileFormat& format) {
    return format.ExtraBytes() < 2 ? uint16_t{0} : LByteReader(format.Bytes().subspan(18)).U16();
}

// The record with other values in its variable fields.
LWaveFileFormat Remake(const LWaveFileFormat& format, uint16_t tag, uint16_t align,
                       std::span<const uint8_t> extra) {
    LByteWriter record;
    record.U16(tag);
    record.Bytes(format.Bytes().subspan(2, 10));
    record.U16(align);
    record.Bytes(format.Bytes().subspan(14, 2));
    record.U16(static_cast<uint16_t>(extra.size()));
    record.Bytes(extra);
    return LWaveFileFormat(record.View());
}

// Whether the record is extensible and its sub-format of the family whose identifiers hold plain tags.
bool IsExtended(const LWaveFileFormat& format) {
    if (format.Tag() != kTagExtensible || format.ExtraBytes() < kExtensibleExtra) return false;
    return std::ranges::equal(format.Bytes().subspan(kSubFormatOffset + 2, kStandardFamily.size()),
                              kStandardFamily);
}

LWaveFileFormat Plain(const LWaveFileFormat& format) {
    const auto extra = format.Record().subspan(LWaveFileFormat::kFixedSize);
    if (!IsExtended(format)) return Remake(format, format.Tag(), format.BlockAlign(), extra);
    const uint16_t tag = LByteReader(format.Bytes().subspan(kSubFormatOffset)).U16();
    return Remake(format, tag, format.BlockAlign(), extra.subspan(kExtensibleExtra));
}

// Adds the record's coefficient pairs, or the seven standard ones when it holds fewer than it claims: a codec
// reads as many as are claimed, wherever the record ends.
void AddMsAdpcmPairs(const LWaveFileFormat& format, LByteWriter& extra) {
    const auto old = format.Record().subspan(LWaveFileFormat::kFixedSize);
    LByteReader in(old);
    in.U16();
    const size_t pairs = in.U16();
    if (pairs >= kMsAdpcmPairs.size() / 2 && in.Remaining() >= pairs * kMsAdpcmPairBytes) {
        extra.Bytes(old.subspan(2, kMsAdpcmPairsOffset - 2 + pairs * kMsAdpcmPairBytes));
        return;
    }
    extra.U16(static_cast<uint16_t>(kMsAdpcmPairs.size() / 2));
    for (const int16_t value : kMsAdpcmPairs) extra.U16(static_cast<uint16_t>(value));
}

LWaveFileFormat WithTrueBlock(const BlockCodec& codec, const LWaveFileFormat& format) {
    const uint16_t frames = TrueBlockFrames(codec, format);
    if (frames == 0) return Remake(format, format.Tag(), 0, {});
    LByteWriter extra;
    extra.U16(frames);
    if (format.Tag() == kTagMsAdpcm)
        AddMsAdpcmPairs(format, extra);
    else if (format.ExtraBytes() > 2)
        extra.Bytes(format.Record().subspan(LWaveFileFormat::kFixedSize + 2));
    return Remake(format, format.Tag(), format.BlockAlign(), extra.View());
}

// Replaces a byte rate that cannot be. Codecs derive buffer sizes from it, refuse a file whose rate is too
// high, or divide by it. Where the frames of a block are known the rate follows from them. Elsewhere the
// stored one is kept unless it is below one byte for 64 frames or above eight bytes for a sample; then the
// sample rate takes its place.
LWaveFileFormat WithTrueByteRate(const LWaveFileFormat& format) {
    constexpr uint64_t kMostFramesPerByte = 64;
    constexpr uint64_t kMostBytesPerSample = 8;
    const uint64_t rate = format.SampleRate();
    const uint64_t told = format.AverageBytesPerSecond();
    const uint64_t blockFrames = static_cast<uint64_t>(LAcmBlockFrames(format));
    uint64_t byteRate = rate;
    if (blockFrames > 0)
        byteRate = std::max<uint64_t>(rate * format.BlockAlign() / blockFrames, rate > 0 ? 1 : 0);
    else if (told > rate / kMostFramesPerByte && told <= rate * format.Channels() * kMostBytesPerSample)
        byteRate = told;
    LByteWriter record;
    record.Bytes(format.Bytes().first(8));
    record.U32(static_cast<uint32_t>(std::min<uint64_t>(byteRate, std::numeric_limits<uint32_t>::max())));
    record.Bytes(format.Record().subspan(12));
    return LWaveFileFormat(record.View());
}

}  // namespace

LWaveFileFormat LAcmRecord(const LWaveFileFormat& format) {
    const LWaveFileFormat plain = Plain(format);
    if (plain.Tag() == kFormatTagPcm) {
        const int bytes = (plain.BitsPerSample() + 7) / 8;
        const uint64_t align = static_cast<uint64_t>(bytes) * plain.Channels();
        if (bytes < 1 || bytes > 4 || align > 0xFFFF || align * plain.SampleRate() > 0xFFFFFFFF)
            return Remake(plain, kFormatTagPcm, 0, {});
        return LWaveFileFormat::Pcm(static_cast<uint16_t>(8 * bytes), plain.Channels(), plain.SampleRate());
    }
    if (IsLaw(plain.Tag()))
        return WithTrueByteRate(Remake(plain, plain.Tag(), plain.Channels(),
                                       plain.Record().subspan(LWaveFileFormat::kFixedSize)));
    const BlockCodec* codec = FindBlockCodec(plain.Tag());
    return WithTrueByteRate(codec ? WithTrueBlock(*codec, plain) : plain);
}

bool LAcmMayConvert(const LWaveFileFormat& record) {
    return record.BlockAlign() > 0 && !(record.Tag() == kFormatTagPcm && record.Channels() > 2);
}

int32_t LAcmBlockFrames(const LWaveFileFormat& record) {
    if (record.BlockAlign() == 0) return 0;
    if (FindBlockCodec(record.Tag())) return SamplesPerBlock(record);
    return record.Tag() == kFormatTagPcm || IsLaw(record.Tag()) ? 1 : 0;
}

// GSM 6.10 predicts each sample from earlier ones. Measured on speech, decoding from a wrong start was right
// to the bit after 600 to 3600 frames; a little less than kBlockFrames is decoded, which leaves room for
// more.
int32_t LAcmWarmUpFrames(const LWaveFileFormat& record) {
    return record.Tag() == kTagGsm610 ? std::max(kBlockFrames - LAcmBlockFrames(record), 0) : 0;
}

LWaveFileFormat LAcmPcm(const LWaveFileFormat& format) {
    return LWaveFileFormat::Pcm(16, std::max<uint16_t>(format.Channels(), 1), format.SampleRate());
}
