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

float Escaped(MP3BitReader& bits, uint32_t value, uint32_t linearBits) {
    if (value == 0) return 0;
    if (value == 15) value += bits.Get(linearBits);
    return bits.Flag() ? -MP3LT::Tables().power[value] : MP3LT::Tables().power[value];
}

// Pairs of one band, from one table.
void ReadPairs(MP3BitReader& bits, const MP3PairTable& table, float gain, float* line, const float* end) {
    MP3BitReader in = bits;
    const MP3LT::Code* entries = MP3LT::Tables().pairs[table.codeSet].data();
    const float* values = MP3LT::Tables().signedPower;
    for (; line < end; line += 2) {
        in.Refill();
        MP3LT::Code code = entries[in.Peek(MP3LT::kPairBits)];
        in.Skip(code.bits);
        if (code.kind != MP3LT::kDirect) [[unlikely]] {
            if (code.kind != MP3LT::kEscape) {
                code = entries[code.x + size_t{code.y} * 256 + in.Peek(code.kind)];
                in.Skip(code.bits);
            }
            if (code.kind == MP3LT::kEscape) {
                line[0] = Escaped(in, code.x, table.linearBits) * gain;
                line[1] = Escaped(in, code.y, table.linearBits) * gain;
                continue;
            }
        }
        line[0] = values[code.x] * gain;
        line[1] = values[code.y] * gain;
    }
    bits = in;
}

// The big values. Returns the line behind them; where the bits end early, that behind the last whole band.
size_t ReadBigValues(MP3BitReader& bits, int32_t end, const MP3Granule& granule, BandWalk& bands,
                     float* lines) {
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

// Quadruples of values of at most 1, until the bits or the lines end. One that ends behind the bits is none.
size_t ReadQuads(MP3BitReader& bits, int32_t end, const uint16_t* quads, BandWalk& bands, size_t line,
                 float* lines) {
    const float* values = MP3LT::Tables().quadValues;
    MP3BitReader in = bits;
    while (line + 4 <= kMP3Lines) {
        in.Refill();
        const uint32_t quad = quads[in.Peek(MP3LT::kQuadBits)];
        in.Skip(quad & 0xFF);
        if (in.Position() > end) break;
        bands.Advance(line);
        lines[line] = values[quad >> 8 & 3] * bands.Gain();
        lines[line + 1] = values[quad >> 10 & 3] * bands.Gain();
        bands.Advance(line + 2);
        lines[line + 2] = values[quad >> 12 & 3] * bands.Gain();
        lines[line + 3] = values[quad >> 14 & 3] * bands.Gain();
        line += 4;
    }
    bits = in;
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

size_t MP3ReadLines(MP3BitReader& bits, int32_t end, const MP3Granule& granule, const MP3Layout& layout,
                    const float* gains, float* lines) {
    BandWalk bands(layout.Widths(granule), gains);
    size_t line = ReadBigValues(bits, end, granule, bands, lines);
    if (bits.Position() < end && line == granule.bigValues * size_t{2})
        line = ReadQuads(bits, end, MP3LT::Tables().quads[granule.quadTable], bands, line, lines);
    std::fill(lines + line, lines + kMP3Lines, 0.0f);
    return line;
}
