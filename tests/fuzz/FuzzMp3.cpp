#include <algorithm>
#include <memory>
#include <vector>

#include "audio/mp3/LMP3Source.h"
#include "base/LMemoryFile.h"
#include "tests/fuzz/Fuzz.h"

static void ReadToTheEnd(LMP3Source& source) {
    std::vector<int32_t> block(size_t{3000} * source.GetChannels());
    while (source.GetPosition() < source.GetLength()) {
        source.Read(block.data(), 3000);
        for (const int32_t v : block) Require(v >= -source.GetLevel() && v <= source.GetLevel());
    }
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::span<const uint8_t> bytes(data, std::min(size, size_t{4000}));
    LMP3Source plain(std::make_unique<LMemoryFile>(bytes), kPlainMP3Kernels);
    ReadToTheEnd(plain);

    LMP3Source source(std::make_unique<LMemoryFile>(bytes));
    const size_t channels = source.GetChannels();
    std::vector<int32_t> first(size_t{3000} * channels), again(first.size());
    source.Read(first.data(), 3000);
    ReadToTheEnd(source);
    // No frame is shorter than 20 bytes, nor longer than 1152 samples.
    const int64_t length = source.GetLength();
    Require(length == plain.GetLength() && (length == 0 || !source.IsError()));
    Require(length >= 0 && length <= static_cast<int64_t>(bytes.size()) / 20 * 1152);

    source.Seek(0);
    source.Read(again.data(), 3000);
    Require(again == first && source.GetLength() == length);
    source.Seek(static_cast<int32_t>(length));
    source.Read(again.data(), 1);
    for (size_t c = 0; c < channels; ++c) Require(again[c] == 0);
    return 0;
}
