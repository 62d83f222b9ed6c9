#include "audio/mp3/MP3SideInfo.h"

#include <algorithm>

#include "audio/mp3/MP3Data.h"

namespace {

// With switched windows the regions are not told: they meet where the standard's short band 3 begins, or long
// band 8.
void ReadSwitched(MP3BitReader& bits, const MP3Bands& bands, bool isMpeg1, MP3Granule& g) {
    g.blockType = static_cast<uint8_t>(bits.Get(2));
    g.isMixed = bits.Flag() && g.blockType == 2;
    for (size_t i = 0; i < 2; ++i) g.tables[i] = static_cast<uint8_t>(bits.Get(5));
    for (uint8_t& gain : g.subblockGains) gain = static_cast<uint8_t>(bits.Get(3) * 4);
    const bool isShort = g.IsShort() || isMpeg1;
    g.regionEnds[0] = isShort ? static_cast<uint16_t>(3 * bands.shortLimits[3]) : bands.longLimits[8];
    g.regionEnds[1] = 576;
}

void ReadNormal(MP3BitReader& bits, const MP3Bands& bands, MP3Granule& g) {
    for (uint8_t& table : g.tables) table = static_cast<uint8_t>(bits.Get(5));
    const uint32_t first = bits.Get(4) + 1, second = first + bits.Get(3) + 1;
    g.regionEnds[0] = bands.longLimits[first];
    g.regionEnds[1] = bands.longLimits[std::min(second, 22u)];
}

void ReadGranule(MP3BitReader& bits, const MP3Header& header, bool isIntensityRight, MP3Granule& g) {
    const MP3Bands& bands = kMP3BandLimits[header.RateIndex()];
    const bool isMpeg1 = header.version == MP3Header::kMpeg1;
    g.dataBits = static_cast<uint16_t>(bits.Get(12));
    g.bigValues = static_cast<uint16_t>(bits.Get(9));
    g.globalGain = static_cast<uint8_t>(bits.Get(8));
    g.scaleFactorCompress = static_cast<uint16_t>(bits.Get(isMpeg1 ? 4 : 9));
    if (isIntensityRight && !isMpeg1) {
        g.isIntensityHalved = (g.scaleFactorCompress & 1) != 0;
        g.scaleFactorCompress >>= 1;
    }
    g.isSwitched = bits.Flag();
    if (g.isSwitched)
        ReadSwitched(bits, bands, isMpeg1, g);
    else
        ReadNormal(bits, bands, g);
    g.hasPretab = isMpeg1 ? bits.Flag() : g.scaleFactorCompress >= 500;
    g.scaleFactorShift = static_cast<uint8_t>(bits.Get(1));
    g.quadTable = static_cast<uint8_t>(bits.Get(1));
}

}  // namespace

void MP3SideInfo::Read(const MP3Header& header, const uint8_t* bytes) {
    *this = {};
    MP3BitReader bits(bytes);
    const bool isMpeg1 = header.version == MP3Header::kMpeg1;
    const size_t channels = header.Channels();
    mainDataBegin = static_cast<uint16_t>(bits.Get(isMpeg1 ? 9 : 8));
    bits.Skip(isMpeg1 ? (channels == 1 ? 5 : 3) : (channels == 1 ? 1 : 2));  // private
    for (size_t c = 0; isMpeg1 && c < channels; ++c)
        scaleFactorSelection[c] = static_cast<uint8_t>(bits.Get(4));
    for (size_t g = 0; g < static_cast<size_t>(header.Granules()); ++g) {
        for (size_t c = 0; c < channels; ++c)
            ReadGranule(bits, header, c == 1 && header.IsIntensity(), granules[g][c]);
    }
    for (size_t c = 0; c < channels; ++c)
        if (granules[1][c].IsShort()) scaleFactorSelection[c] = 0;
}

void MP3ScaleFactors::Read(MP3BitReader& bits, const MP3Header& header, const MP3Granule& granule,
                           uint8_t selection, bool isIntensityRight) {
    if (header.version == MP3Header::kMpeg1)
        Read1(bits, granule, selection);
    else
        Read2(bits, granule, isIntensityRight);
}

void MP3ScaleFactors::Read1(MP3BitReader& bits, const MP3Granule& granule, uint8_t selection) {
    constexpr uint8_t kFirst[16] = {0, 0, 0, 0, 3, 1, 1, 1, 2, 2, 2, 3, 3, 3, 4, 4};
    constexpr uint8_t kSecond[16] = {0, 1, 2, 3, 0, 1, 2, 3, 1, 2, 3, 1, 2, 3, 2, 3};
    constexpr uint8_t kGroups[5] = {0, 6, 11, 16, 21};
    const uint32_t first = kFirst[granule.scaleFactorCompress], second = kSecond[granule.scaleFactorCompress];
    std::fill(std::begin(illegal), std::end(illegal), uint8_t{7});
    if (!granule.IsShort()) {
        for (size_t group = 0; group < 4; ++group) {
            if ((selection >> (3 - group) & 1) != 0) continue;
            for (size_t b = kGroups[group]; b < kGroups[group + 1]; ++b)
                values[b] = static_cast<uint8_t>(bits.Get(group < 2 ? first : second));
        }
        std::fill(values + 21, values + kMost, uint8_t{0});
        return;
    }
    const size_t middle = granule.isMixed ? 8 + 3 * 3 : 6 * 3;
    for (size_t b = 0; b < kMost; ++b)
        values[b] = static_cast<uint8_t>(b < middle + 18 ? bits.Get(b < middle ? first : second) : 0);
}

void MP3ScaleFactors::Read2(MP3BitReader& bits, const MP3Granule& granule, bool isIntensityRight) {
    // How many scale factors the four partitions hold: rows as below, then long, short and mixed blocks.
    constexpr uint8_t kCounts[6][3][4] = {
        {{6, 5, 5, 5}, {9, 9, 9, 9}, {6, 9, 9, 9}},       {{6, 5, 7, 3}, {9, 9, 12, 6}, {6, 9, 12, 6}},
        {{11, 10, 0, 0}, {18, 18, 0, 0}, {15, 18, 0, 0}}, {{7, 7, 7, 0}, {12, 12, 12, 0}, {6, 15, 12, 0}},
        {{6, 6, 6, 3}, {12, 9, 9, 6}, {6, 12, 9, 6}},     {{8, 8, 5, 0}, {15, 12, 9, 0}, {6, 18, 9, 0}},
    };
    const uint32_t s = granule.scaleFactorCompress;
    size_t row;
    uint32_t lengths[4] = {};
    const auto set = [&](size_t r, uint32_t a, uint32_t b, uint32_t c, uint32_t d) {
        row = r;
        lengths[0] = a, lengths[1] = b, lengths[2] = c, lengths[3] = d;
    };
    if (isIntensityRight) {
        if (s < 180)
            set(3, s / 36, s % 36 / 6, s % 36 % 6, 0);
        else if (s < 244)
            set(4, (s - 180) % 64 >> 4, (s - 180) % 16 >> 2, (s - 180) % 4, 0);
        else
            set(5, (s - 244) / 3, (s - 244) % 3, 0, 0);
    } else {
        if (s < 400)
            set(0, (s >> 4) / 5, (s >> 4) % 5, s % 16 >> 2, s % 4);
        else if (s < 500)
            set(1, ((s - 400) >> 2) / 5, ((s - 400) >> 2) % 5, (s - 400) % 4, 0);
        else
            set(2, (s - 500) / 3, (s - 500) % 3, 0, 0);
    }
    const uint8_t* counts = kCounts[row][granule.isMixed ? 2 : granule.IsShort() ? 1 : 0];
    size_t b = 0;
    for (size_t part = 0; part < 4; ++part) {
        const uint32_t length = lengths[part];
        for (size_t i = 0; i < counts[part]; ++i, ++b) {
            values[b] = static_cast<uint8_t>(bits.Get(length));
            illegal[b] = static_cast<uint8_t>(length > 0 ? (1u << length) - 1 : 255);
        }
    }
    std::fill(values + b, values + kMost, uint8_t{0});
    std::fill(illegal + b, illegal + kMost, uint8_t{255});
}
