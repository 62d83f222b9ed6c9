#include <cstdlib>

#include "base/LMemoryFile.h"
#include "store/SendToSettings.h"

// A recipient that loads is saved as 1964 bytes, which load again as the same recipient.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    LMemoryFile file({data, size});
    SendToSettings first;
    if (!first.Load(file)) {
        if (first.ToBytes() != SendToSettings().ToBytes()) std::abort();  // a refusal changes nothing
        return 0;
    }
    const std::vector<uint8_t> saved = first.ToBytes();
    LMemoryFile again(saved);
    SendToSettings second;
    if (saved.size() != 1964 || !second.Load(again) || second.ToBytes() != saved) std::abort();
    if (DescribeRecipient(first, true) != DescribeRecipient(second, true)) std::abort();
    if (first.waveFormat.Record().size() > LWaveFileFormat::kSize) std::abort();
    return 0;
}
