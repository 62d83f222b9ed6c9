#include "base/LMemoryFile.h"
#include "store/SendToSettings.h"
#include "tests/fuzz/Fuzz.h"

// A recipient that loads is saved as 1964 bytes, which load again as the same recipient.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    LMemoryFile file({data, size});
    SendToSettings first;
    if (!first.Load(file)) {
        Require(first.ToBytes() == SendToSettings().ToBytes());  // a refusal changes nothing
        return 0;
    }
    const std::vector<uint8_t> saved = first.ToBytes();
    LMemoryFile again(saved);
    SendToSettings second;
    Require(saved.size() == 1964 && second.Load(again) && second.ToBytes() == saved);
    Require(DescribeRecipient(first, true) == DescribeRecipient(second, true));
    Require(first.waveFormat.Record().size() <= LWaveFileFormat::kSize);
    return 0;
}
