#include "audio/mp3/MP3Huffman.h"

#include <algorithm>

#include "audio/mp3/MP3Data.h"
#include "audio/mp3/MP3LT.h"

namespace {

// The bands of a granule, gone through line by line.
class BandWalk {
public:
    BandWalk(std::span<const uint8_t> widths, const float* gains) : m_widths(widths), m_gains(gains) {}

    float Gain() const { return m_gains[m_band]; }
    size_t End() const { return m_end; }
    void Advance(size_t line) {
        while (line >= m_end && m_band + 1 < m_widths.size()) m_end += m_widths[++m_band];
    }

private:
    std::span<const uint8_t> m_widths;
    const float* m_gains;
    size_t m_band = 0;
    size_t m_end = m_widths[0];
};

// A value of which only the magnitude was coded, up to 15: behind it are the rest and the sign.
[[gnu::always_inline]] inline float Escaped(MP3BitReader& bits, uint32_t value, uint32_t linearBits) {
    if (value == 0) return 0;
    const uint32_t more = bits.Get(value == 15 ? linearBits + 1 : 1);
    const float power = MP3LT::Tables().power[value + more / 2];
    return (more & 1) != 0 ? -power : power;
}

// Pairs of one band, from one table. In line, as the next functions, so that the reader stays in registers.
[[gnu::always_inline]] inline void ReadPairs(MP3BitReader& bits, const MP3PairTable& table, float gain,
                                             float* line, const float* end) {
    const MP3LT::Code* codes = MP3LT::Tables().pairs[table.codeSet].data();
    const float* values = MP3LT::Tables().signedPower;
    for (; line < end; line += 2) {
        bits.Refill();
        MP3LT::Code code = codes[bits.Peek(MP3LT::kPairBits)];
        bits.Skip(code & 0xFF);
        if (code >> 24 != 0) [[unlikely]] {
            if (code >> 24 != MP3LT::kEscape) {
                code = codes[(code >> 8 & 0xFFFF) + bits.Peek(code >> 24)];
                bits.Skip(code & 0xFF);
            }
            if (code >> 24 == MP3LT::kEscape) {
                line[0] = Escaped(bits, code >> 8 & 0xFF, table.linearBits) * gain;
                line[1] = Escaped(bits, code >> 16 & 0xFF, table.linearBits) * gain;
                continue;
            }
        }
        line[0] = values[code >> 8 & 0xFF] * gain;
        line[1] = values[code >> 16 & 0xFF] * gain;
    }
}

// The big values. Returns the line behind them; where the bits end early, that behind the last whole band.
[[gnu::always_inline]] inline size_t ReadBigValues(MP3BitReader& bits, int32_t end, const MP3Granule& granule,
                                                   BandWalk& bands, float* lines) {
    const size_t count = granule.bigValues * size_t{2};
    size_t line = 0;
    for (size_t region = 0; region < 3; ++region) {
        const size_t regionEnd = region < 2 ? std::min<size_t>(granule.regionEnds[region], count) : count;
        const MP3PairTable& table = kMP3PairTables[granule.tables[region]];
        while (line < regionEnd) {
            bands.Advance(line);
            const size_t stop = std::min(bands.End(), regionEnd);
            if (table.codeSet < 0) {
                std::fill(lines + line, lines + stop, 0.0f);
            } else {
                ReadPairs(bits, table, bands.Gain(), lines + line, lines + stop);
                if (bits.Position() > end) return line;
            }
            line = stop;
        }
    }
    return line;
}

// The four values of one quadruple; false when it ends behind the bits.
[[gnu::always_inline]] inline bool ReadQuad(MP3BitReader& bits, int32_t end, const uint16_t* quads, float low,
                                            float high, float* line) {
    bits.Refill();
    const uint32_t quad = quads[bits.Peek(MP3LT::kQuadBits)];
    bits.Skip(quad & 0xFF);
    if (bits.Position() > end) return false;
    const float* values = MP3LT::Tables().quadValues[quad >> 8];
    line[0] = values[0] * low;
    line[1] = values[1] * low;
    line[2] = values[2] * high;
    line[3] = values[3] * high;
    return true;
}

// Quadruples of values of at most 1, until the bits or the lines end. One that ends behind the bits is none.
[[gnu::always_inline]] inline size_t ReadQuads(MP3BitReader& bits, int32_t end, const uint16_t* quads,
                                               BandWalk& bands, size_t line, float* lines) {
    while (line + 4 <= kMP3Lines) {
        bands.Advance(line);
        const float gain = bands.Gain();
        for (const size_t stop = bands.End(); line + 4 <= stop; line += 4)
            if (!ReadQuad(bits, end, quads, gain, gain, lines + line)) return line;
        if (line >= bands.End() || line + 4 > kMP3Lines) continue;
        bands.Advance(line + 2);  // across the limit of two bands
        if (!ReadQuad(bits, end, quads, gain, bands.Gain(), lines + line)) return line;
        line += 4;
    }
    return line;
}

}  // namespace

void MP3BandGains(const MP3Granule& granule, const MP3ScaleFactors& factors, const MP3Layout& layout,
                  float factor, float* gains) {
    constexpr uint8_t kPretab[22] = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 2, 2, 3, 3, 3, 2, 0};
    const MP3LT& tables = MP3LT::Tables();
    const size_t count = layout.Widths(granule).size(), longBands = layout.LongBands(granule);
    const float gain = tables.globalGain[granule.globalGain] * factor;
    for (size_t b = 0; b < longBands; ++b) {
        const int value = factors.values[b] + (granule.hasPretab ? kPretab[b] : 0);
        gains[b] = gain * tables.scaleFactor[value << granule.scaleFactorShift];
    }
    float windows[3];
    for (size_t w = 0; w < 3; ++w) windows[w] = gain * tables.scaleFactor[granule.subblockGains[w]];
    for (size_t b = longBands; b < count; ++b)
        gains[b] =
            windows[(b - longBands) % 3] * tables.scaleFactor[factors.values[b] << granule.scaleFactorShift];
}

size_t MP3ReadLines(MP3BitReader bits, int32_t end, const MP3Granule& granule, const MP3Layout& layout,
                    const float* gains, float* lines) {
    BandWalk bands(layout.Widths(granule), gains);
    size_t line = ReadBigValues(bits, end, granule, bands, lines);
    if (bits.Position() < end && line == granule.bigValues * size_t{2})
        line = ReadQuads(bits, end, MP3LT::Tables().quads[granule.quadTable], bands, line, lines);
    std::fill(lines + line, lines + kMP3Lines, 0.0f);
    return line;
}
