#include "audio/mp3/MP3Layout.h"

#include <algorithm>

#include "audio/mp3/MP3Data.h"

void MP3Layout::AddLong(Kind& kind, const uint16_t* limits, size_t count) {
    for (size_t b = 0; b < count; ++b)
        kind.widths[kind.count++] = static_cast<uint8_t>(limits[b + 1] - limits[b]);
    kind.longBands = count;
}

void MP3Layout::AddShort(Kind& kind, const uint16_t* limits, size_t first) {
    for (size_t b = first; b < 13; ++b)
        for (int window = 0; window < 3; ++window)
            kind.widths[kind.count++] = static_cast<uint8_t>(limits[b + 1] - limits[b]);
}

bool MP3Layout::Build(const MP3Header& header) {
    const MP3Bands& bands = kMP3BandLimits[header.RateIndex()];
    const size_t mixedLong = header.version == MP3Header::kMpeg1 ? 8 : 6;
    AddLong(m_kinds[0], bands.longLimits, 22);
    AddShort(m_kinds[1], bands.shortLimits, 0);
    AddLong(m_kinds[2], bands.longLimits, mixedLong);
    AddShort(m_kinds[2], bands.shortLimits, 3);
    m_firstMixedLine = bands.longLimits[mixedLong];
    for (size_t b = 0; b < 13; ++b) {
        const size_t start = bands.shortLimits[b], width = bands.shortLimits[b + 1] - start;
        for (size_t i = 0; i < 3 * width; ++i) {
            const size_t line = 3 * start + 3 * (i % width) + i / width;
            if (line >= kMP3Lines) return false;
            m_reorder[line] = static_cast<uint16_t>(3 * start + i);
        }
    }
    return true;
}

size_t MP3Layout::Reorder(const MP3Granule& granule, float* lines, size_t end) const {
    const Kind& kind = KindOf(granule);
    size_t newEnd = granule.isMixed ? m_firstMixedLine : 0;
    for (size_t b = kind.longBands; newEnd < end && b < kind.count; b += 3)
        newEnd += 3 * size_t{kind.widths[b]};
    float sent[kMP3Lines];
    std::copy_n(lines, newEnd, sent);
    for (size_t i = granule.isMixed ? m_firstMixedLine : 0; i < newEnd; ++i) lines[i] = sent[m_reorder[i]];
    return newEnd;
}
