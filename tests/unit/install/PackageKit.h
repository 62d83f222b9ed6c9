#pragma once

#include "base/LBytes.h"
#include "base/LCrc32.h"
#include "install/SetupPackage.h"
#include "tests/unit/TestKit.h"

struct GivenFile {
    std::string name;
    std::string bytes;
};

// The parts of a package, which a test may change before they are joined.
struct PackageParts {
    std::string bytes;  // of all files
    std::vector<PackageFile> files;
    uint32_t count;
    uint32_t marker = kMarkerSetup;

    explicit PackageParts(const std::vector<GivenFile>& given) : count(static_cast<uint32_t>(given.size())) {
        for (const GivenFile& file : given) {
            files.push_back({file.name, static_cast<uint32_t>(bytes.size()),
                             static_cast<uint32_t>(file.bytes.size()), 1172657045,
                             LCrc32::Of(Text(file.bytes))});
            bytes += file.bytes;
        }
    }
    Bytes Join() const {
        LByteWriter directory;
        directory.U32(count);
        for (const PackageFile& file : files) {
            for (const uint32_t number : {file.offset, file.size, file.time, file.crc}) directory.U32(number);
            directory.U8(static_cast<uint8_t>(file.name.size()));
            directory.Text(file.name);
        }
        LByteWriter package;
        package.Text(bytes);
        package.Bytes(directory.View());
        package.U32(LCrc32::Of(directory.View()));
        package.U32(static_cast<uint32_t>(bytes.size()));
        package.U32(marker);
        return {package.View().begin(), package.View().end()};
    }
};
