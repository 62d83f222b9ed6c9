#include <vector>

#include "base/LBytes.h"
#include "base/LCrc32.h"
#include "base/LMemoryFile.h"
#include "install/SetupPackage.h"
#include "tests/fuzz/Fuzz.h"

// Whatever a directory holds, an accepted package has plain names, and files that lie one behind the other.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1) return 0;
    const std::span<const uint8_t> input(data, size);
    const size_t programBytes = std::min<size_t>(data[0], size - 1);
    const std::span<const uint8_t> directory = input.subspan(1 + programBytes);
    LByteWriter bytes;
    bytes.Bytes(input.subspan(1));
    bytes.U32(LCrc32::Of(directory));
    bytes.U32(static_cast<uint32_t>(programBytes));
    bytes.U32(kMarkerSetup);
    LMemoryFile stream(bytes.View());
    const auto package = SetupPackage::Open(stream);
    if (!package) return 0;
    uint32_t at = 0;
    for (const PackageFile& file : package->Files()) {
        Require(file.offset == at && !file.name.empty() &&
                file.name.find_first_of("\\/:*?\"<>|") == file.name.npos);
        LMemoryFile target;
        Require(!package->Extract(file, target) || target.View().size() == file.size);
        at += file.size;
    }
    Require(at == programBytes);
    return 0;
}
