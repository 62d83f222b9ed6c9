#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "audio/mp3/MP3SideInfo.h"

// Where the bands of a stream lie: the same for all its frames.
// Units:  lines.
class MP3Layout {
public:
    // False when the tables of the bands would lead out of a granule.
    bool Build(const MP3Header& header);

    // The widths of a granule's bands in the order of transmission; short bands have one for each window.
    std::span<const uint8_t> Widths(const MP3Granule& granule) const {
        const Kind& kind = KindOf(granule);
        return {kind.widths, kind.count};
    }
    // How many of them are long bands.
    size_t LongBands(const MP3Granule& granule) const { return KindOf(granule).longBands; }

    // Takes the short blocks' lines from the order of transmission to that of their transform: the lines of
    // the three windows in turn. From end on they are 0; returns from where they are now.
    size_t Reorder(const MP3Granule& granule, float* lines, size_t end) const;

private:
    struct Kind {
        uint8_t widths[MP3ScaleFactors::kMost];
        size_t count;
        size_t longBands;
    };
    const Kind& KindOf(const MP3Granule& g) const { return m_kinds[!g.IsShort() ? 0 : g.isMixed ? 2 : 1]; }
    static void AddLong(Kind& kind, const uint16_t* limits, size_t count);
    static void AddShort(Kind& kind, const uint16_t* limits, size_t first);

    Kind m_kinds[3] = {};          // long, short, mixed
    uint16_t m_reorder[576] = {};  // from which line each one comes
    size_t m_firstMixedLine = 0;   // the lines before it are long in a mixed granule
};
