// The bookkeeping of compressed files around a codec that misbehaves. The input: one byte for the fault, one
// for the conversion with which it begins, one for the number of commands; the commands, four bytes each
// (what to do, and a number of three bytes); then a WAV file.

#include <algorithm>
#include <vector>

#include "audio/wave/LSRCACMWave.h"
#include "base/LArith.h"
#include "base/LBytes.h"
#include "base/LMemoryFile.h"
#include "tests/fuzz/Fuzz.h"
#include "tests/stubs/StandInCodec.h"

// A length at or below the position means that nothing comes any more.
static void ReadSome(LSRCACMWave& source, int32_t frames) {
    std::vector<int32_t> block(static_cast<size_t>(frames) * source.GetChannels(), 1);
    const int32_t before = source.GetPosition();
    const bool wasAtEnd = source.GetLength() <= before;
    source.Read(block.data(), frames);
    Require(source.GetPosition() == Saturate(int64_t{before} + frames) && source.GetLength() >= 0);
    if (wasAtEnd) Require(std::ranges::all_of(block, [](int32_t v) { return v == 0; }));
}

static void Obey(LSRCACMWave& source, LByteReader commands) {
    while (commands.Remaining() > 0) {
        const uint8_t what = commands.U8();
        const int32_t number = static_cast<int32_t>(commands.U16() | uint32_t{commands.U8()} << 16);
        if (what & 1) {
            source.Seek(what & 2 ? -number : number << (what >> 6 & 3));
        } else {
            ReadSome(source, number % kBlockFrames + 1);
        }
    }
}

// Whatever the codec does, reading comes to an end.
static void ReadToEnd(LSRCACMWave& source, int64_t dataBytes) {
    constexpr int64_t kMostFramesOfAByte = 320;
    constexpr int64_t kMostUnfed = 65;
    const int64_t most = (dataBytes + kMostUnfed) * kMostFramesOfAByte / kBlockFrames + 2;
    source.Seek(0);
    for (int64_t reads = 0; source.GetPosition() < source.GetLength(); ++reads) {
        Require(reads <= most);
        ReadSome(source, kBlockFrames);
    }
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    LByteReader in(std::span(data, size));
    StandInCodec::fault = static_cast<StandInCodec::Fault>(in.U8() % StandInCodec::kFaults);
    StandInCodec::failAfter = in.U8();
    StandInCodec::conversions = 0;
    const std::span<const uint8_t> commands = in.Bytes(size_t{in.U8()} % 16 * 4);
    auto stream = std::make_unique<LMemoryFile>(in.Bytes(in.Remaining()));
    LWaveInfo info;
    if (!LWaveFile::ReadInfo(*stream, info) || info.format.Channels() > 8) return 0;
    LSRCACMWave source(std::move(stream), info, StandInCodec::Open);
    if (source.IsError()) return 0;
    Obey(source, LByteReader(commands));
    if (info.dataBytes <= 4096) ReadToEnd(source, info.dataBytes);
    return 0;
}
