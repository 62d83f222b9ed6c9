#include "audio/mp3/MP3Stereo.h"

#include <algorithm>
#include <cmath>

#include "audio/mp3/MP3Kernels.h"

namespace {

struct Factors {
    float left, right;
};

// position: 0 to 6 for MPEG-1.
Factors FactorsOf(bool isMpeg1, bool isHalved, int position) {
    if (isMpeg1) {
        constexpr float kLeft[7] = {
            0, 0.21132486540518708f, 0.36602540378443865f, 0.5f, 0.6339745962155613f, 0.7886751345948129f, 1};
        return {kLeft[position], 1 - kLeft[position]};
    }
    const int steps = (position + 1) / 2;
    const float factor = std::exp2(static_cast<float>(steps) * (isHalved ? -0.5f : -0.25f));
    return position % 2 != 0 ? Factors{factor, 1} : Factors{1, factor};
}

// The bands of the right channel that are empty up to the top: for short blocks of each window by itself.
// The long bands of a mixed granule count only where all its short ones are empty.
class EmptyBands {
public:
    EmptyBands(std::span<const uint8_t> widths, size_t longBands, const MP3StereoLines& lines)
        : m_longBands(longBands) {
        size_t line = 0;
        for (size_t b = 0; b < widths.size(); line += widths[b++]) {
            const float* band = lines.right + line;
            const bool isEmpty =
                line >= lines.rightEnd || std::all_of(band, band + widths[b], [](float v) { return v == 0; });
            if (isEmpty) continue;
            if (b < longBands) {
                m_firstLong = b + 1;
            } else {
                m_first[(b - longBands) % 3] = b + 1;
                m_firstLong = longBands;
            }
        }
    }
    bool operator[](size_t band) const {
        return band >= (band < m_longBands ? m_firstLong : m_first[(band - m_longBands) % 3]);
    }

private:
    size_t m_longBands;
    size_t m_firstLong = 0;
    size_t m_first[3] = {};
};

// The position of a band. That behind the last band with a scale factor takes the one below it. Where that is
// no intensity band decoders differ: in MPEG-2 the standard's streams are met with the middle, in MPEG-1 the
// others take the scale factor for a position all the same.
int PositionOf(size_t band, size_t count, size_t step, bool isMpeg1, const EmptyBands& empty,
               const MP3ScaleFactors& factors) {
    const bool isLast = band + step >= count;
    if (isLast && !isMpeg1 && !empty[band - step]) return 0;
    const size_t from = isLast ? band - step : band;
    const bool isLegal = factors.values[from] < factors.illegal[from];
    return isLegal ? factors.values[from] : -1;
}

void Intensity(const MP3Header& header, const MP3Granule& right, const MP3ScaleFactors& factors,
               const MP3Layout& layout, MP3StereoLines& lines) {
    constexpr float kRootOf2 = 1.4142135623730951f;
    const bool isMpeg1 = header.version == MP3Header::kMpeg1;
    const std::span<const uint8_t> widths = layout.Widths(right);
    const EmptyBands empty(widths, layout.LongBands(right), lines);
    const size_t step = right.IsShort() ? 3 : 1;
    size_t line = 0;
    for (size_t b = 0; b < widths.size(); line += widths[b++]) {
        float *left = lines.left + line, *other = lines.right + line;
        const int position = empty[b] ? PositionOf(b, widths.size(), step, isMpeg1, empty, factors) : -1;
        if (position >= 0) {
            Factors f = FactorsOf(isMpeg1, right.isIntensityHalved, position);
            if (header.IsMidSide()) f = {f.left * kRootOf2, f.right * kRootOf2};
            for (size_t i = 0; i < widths[b]; ++i) {
                other[i] = left[i] * f.right;
                left[i] *= f.left;
            }
        } else if (header.IsMidSide()) {
            kPlainMP3Kernels.midSide(left, other, widths[b]);
        }
    }
}

}  // namespace

void MP3JoinStereo(const MP3Header& header, const MP3Granule& right, const MP3ScaleFactors& rightFactors,
                   const MP3Layout& layout, const MP3Kernels& kernels, MP3StereoLines& lines) {
    if (!header.IsMidSide() && !header.IsIntensity()) return;
    const size_t end = std::max(lines.leftEnd, lines.rightEnd);
    if (header.IsIntensity())
        Intensity(header, right, rightFactors, layout, lines);
    else
        kernels.midSide(lines.left, lines.right, end);
    lines.leftEnd = lines.rightEnd = end;
}
