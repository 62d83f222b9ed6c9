#include "audio/mp3/MP3Decoder.h"

#include <algorithm>
#include <cstring>

#include "audio/mp3/MP3Huffman.h"
#include "audio/mp3/MP3Stereo.h"
#include "base/LTrace.h"

MP3Decoder::MP3Decoder(const MP3Kernels& kernels) : m_kernels(kernels) {
    kernels.prepare();
}

void MP3Decoder::Restart() {
    m_states[0] = m_states[1] = {};
    m_before = m_present = 0;
    m_factors[0] = m_factors[1] = {};
}

// Puts a frame's main data behind that of the frames before, of which the last bytes stay.
bool MP3Decoder::KeepMainData(const MP3Header& header, const uint8_t* bytes) {
    const size_t size = header.MainDataBytes();
    m_before = std::min(m_present, kMostBefore);
    std::memmove(m_data, m_data + m_present - m_before, m_before);
    std::memcpy(m_data + m_before, bytes + header.SideInfoBytes(), size);
    m_present = m_before + size;
    std::memset(m_data + m_present, 0, kMP3SpareBytes);
    return m_side.mainDataBegin <= m_before;
}

bool MP3Decoder::Decode(const MP3Header& header, const uint8_t* bytes, int32_t* samples) {
    m_side.Read(header, bytes);
    const bool isComplete = KeepMainData(header, bytes);
    int32_t position = isComplete ? static_cast<int32_t>(m_before - m_side.mainDataBegin) * 8 : 0;
    for (size_t g = 0; g < static_cast<size_t>(header.Granules()); ++g) {
        if (!isComplete) {
            for (auto& lines : m_lines) std::fill(std::begin(lines), std::end(lines), 0.0f);
            m_ends[0] = m_ends[1] = 0;
        } else if (!ReadGranule(header, g, position)) {
            return false;
        }
        Hear(header, g, samples + g * kMP3Lines * header.Channels());
    }
    return true;
}

// Reads the lines of a granule and joins their stereo. position: of the granule's first bit, and then of the
// next one's.
bool MP3Decoder::ReadGranule(const MP3Header& header, size_t g, int32_t& position) {
    const size_t channels = header.Channels();
    for (size_t c = 0; c < channels; ++c) {
        const MP3Granule& granule = m_side.granules[g][c];
        if (granule.bigValues << 1 > static_cast<int>(kMP3Lines)) {
            LTrace("LMP3Source::DecodeHuffmanData (si.big_values << 1) > 576");
            return false;
        }
        const int32_t end = std::min(position + granule.dataBits, static_cast<int32_t>(m_present * 8));
        MP3BitReader bits(m_data, position);
        const uint8_t selection = g == 0 ? uint8_t{0} : m_side.scaleFactorSelection[c];
        m_factors[c].Read(bits, header, granule, selection, c == 1 && header.IsIntensity());
        float gains[MP3ScaleFactors::kMost];
        MP3BandGains(granule, m_factors[c], m_layout, header.IsMidSide() ? 0.7071067811865475f : 1.0f, gains);
        m_ends[c] = MP3ReadLines(bits, end, granule, m_layout, gains, m_lines[c]);
        position = end;
    }
    if (channels == 1) return true;
    MP3StereoLines lines = {m_lines[0], m_lines[1], m_ends[0], m_ends[1]};
    MP3JoinStereo(header, m_side.granules[g][1], m_factors[1], m_layout, m_kernels, lines);
    m_ends[0] = lines.leftEnd, m_ends[1] = lines.rightEnd;
    return true;
}

// From lines to samples.
void MP3Decoder::Hear(const MP3Header& header, size_t g, int32_t* samples) {
    for (size_t c = 0; c < header.Channels(); ++c) {
        const MP3Granule& granule = m_side.granules[g][c];
        if (granule.IsShort() && m_ends[c] > 0) m_ends[c] = m_layout.Reorder(granule, m_lines[c], m_ends[c]);
        const size_t longBands = granule.isMixed ? 2 : 0;
        const size_t used = (m_ends[c] + 17) / 18;
        const size_t limits = !granule.IsShort() ? std::min<size_t>(used, 31) : granule.isMixed ? 1 : 0;
        if (used > 0) m_kernels.reduceAlias(m_lines[c], limits);
        const size_t bands = std::min(used > 0 ? used + 1 : 0, kMP3Bands);
        m_kernels.transform(m_lines[c], bands, granule.blockType, longBands, m_states[c],
                            m_slots + c * kMP3Lines);
    }
    m_kernels.synthesise(m_slots, m_states, header.Channels(), samples);
}
