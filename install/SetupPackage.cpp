#include "install/SetupPackage.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "base/LBytes.h"
#include "base/LCrc32.h"
#include "base/LText.h"

// The directory stands behind the files, so that the program's own bytes begin the package and Windows runs
// it. Its offset and check sum stand in the package's last bytes, before the marker.
// The program itself is the first file of the directory: a bit that flipped in the running code is found like
// one in any other file.

namespace {

constexpr uint32_t kTrailerBytes = 12;   // directory's check sum, directory's offset, marker
constexpr size_t kFixedEntryBytes = 17;  // before the name
constexpr size_t kLongestName = 64;
constexpr size_t kBlockBytes = 65536;

// A plain name of letters, digits, and "-._ " inside: no folder, no drive, no stream, nothing that a shell
// or the platform reads in another way.
bool IsPlainName(std::string_view name) {
    constexpr std::string_view kInside = "-._";
    const auto isSafe = [&](char c) {
        return LIsDigit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
               kInside.find(c) != std::string_view::npos;
    };
    if (name.empty() || name.size() > kLongestName || !std::ranges::all_of(name, isSafe)) return false;
    return name.front() != '.' && name.back() != '.';
}

// Whether the platform takes the name for a device, whatever its extension.
bool NamesDevice(std::string_view name) {
    const std::string_view stem = name.substr(0, name.find('.'));
    if (stem.size() == 4 && LIsDigit(stem[3]))
        return LEqualNoCase(stem.substr(0, 3), "COM") || LEqualNoCase(stem.substr(0, 3), "LPT");
    constexpr std::string_view kDevices[] = {"CON", "PRN", "AUX", "NUL"};
    return std::ranges::any_of(kDevices, [&](std::string_view device) { return LEqualNoCase(stem, device); });
}

bool IsTaken(const std::vector<PackageFile>& files, std::string_view name) {
    return std::ranges::any_of(files, [&](const PackageFile& file) { return LEqualNoCase(file.name, name); });
}

// The files of a directory, one behind the other without a gap from the package's start up to end.
std::optional<std::vector<PackageFile>> ReadFiles(std::span<const uint8_t> directory, uint32_t end) {
    LByteReader in(directory);
    std::vector<PackageFile> files;
    uint32_t at = 0;
    for (uint32_t count = in.U32(); in.Ok() && files.size() < count;) {
        PackageFile file;
        file.offset = in.U32();
        file.size = in.U32();
        file.time = in.U32();
        file.crc = in.U32();
        const std::span<const uint8_t> name = in.Bytes(in.U8());
        file.name.assign(name.begin(), name.end());
        const bool fits = in.Ok() && file.offset == at && file.size <= end - at;
        if (!fits || !IsPlainName(file.name) || NamesDevice(file.name) || IsTaken(files, file.name))
            return {};
        at += file.size;
        files.push_back(std::move(file));
        if (files.size() > SetupPackage::kMostFiles) return {};
    }
    const bool isWhole = in.Ok() && in.Remaining() == 0 && at == end && !files.empty();
    return isWhole ? std::optional(std::move(files)) : std::nullopt;
}

}  // namespace

bool IsInstallableName(std::string_view name) {
    return IsPlainName(name) && !NamesDevice(name);
}

std::optional<SetupPackage> SetupPackage::Open(LReadStream& package) {
    constexpr uint32_t kLongestDirectory = 4 + kMostFiles * (kFixedEntryBytes + kLongestName);
    const int64_t size = package.Size();
    std::array<uint8_t, kTrailerBytes> trailer;
    if (size < kTrailerBytes || size > kLongest || !package.Seek(size - kTrailerBytes) ||
        !package.ReadExact(trailer))
        return {};
    LByteReader in(trailer);
    const uint32_t crc = in.U32();
    const uint32_t offset = in.U32();
    const uint32_t marker = in.U32();
    const uint32_t end = static_cast<uint32_t>(size) - kTrailerBytes;
    if (marker != kMarkerSetup && marker != kMarkerUpdate) return {};
    if (offset > end || end - offset > kLongestDirectory) return {};
    std::vector<uint8_t> directory(end - offset);
    if (!package.Seek(offset) || !package.ReadExact(directory) || LCrc32::Of(directory) != crc) return {};
    std::optional<std::vector<PackageFile>> files = ReadFiles(directory, offset);
    if (!files) return {};
    return SetupPackage(package, marker, std::move(*files));
}

uint32_t SetupPackage::TotalBytes() const {
    uint32_t total = 0;
    for (const PackageFile& file : m_files) total += file.size;
    return total;
}

template <class Take>
bool SetupPackage::ForBlocks(const PackageFile& file, Take take) const {
    if (!m_package->Seek(file.offset)) return false;
    std::vector<uint8_t> block(kBlockBytes);
    LCrc32 crc;
    for (uint32_t left = file.size; left > 0;) {
        const auto bytes = std::span(block).first(std::min<size_t>(left, kBlockBytes));
        if (!m_package->ReadExact(bytes)) return false;
        crc.Add(bytes);
        if (!take(bytes)) return false;
        left -= static_cast<uint32_t>(bytes.size());
    }
    return crc.Value() == file.crc;
}

ProcessResult SetupPackage::Check(ProcessContext& context) const {
    const double total = TotalBytes();
    double done = 0;
    bool isStopped = false;
    for (const PackageFile& file : m_files) {
        const bool isWhole = ForBlocks(file, [&](std::span<const uint8_t> bytes) {
            isStopped = context.CancelRequested();
            done += static_cast<double>(bytes.size());
            context.SetProgress(done / total);
            return !isStopped;
        });
        if (isStopped) return ProcessResult::Stopped;
        if (!isWhole) return ProcessResult::Failed;
    }
    return ProcessResult::Done;
}

bool SetupPackage::Extract(const PackageFile& file, LStream& target) const {
    return ForBlocks(file, [&](std::span<const uint8_t> bytes) { return target.WriteAll(bytes); });
}
