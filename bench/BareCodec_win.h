#pragma once

#include <windows.h>

#include <mmsystem.h>

#include <mmreg.h>
#include <msacm.h>

#include <cstring>
#include <span>
#include <vector>

#include "audio/stream/LSample.h"
#include "base/LWaveFileFormat.h"

// A codec stream with its two buffers, sized for a block of PCM on its PCM side.
class BareCodec {
public:
    BareCodec(const LWaveFileFormat& from, const LWaveFileFormat& to) {
        constexpr DWORD kPcmBytes = kBlockFrames * 2;
        DWORD other = 0;
        acmStreamOpen(&m_stream, nullptr, Record(from), Record(to), nullptr, 0, 0, 0);
        const bool encodes = from.Tag() == kFormatTagPcm;
        acmStreamSize(m_stream, kPcmBytes, &other,
                      encodes ? ACM_STREAMSIZEF_SOURCE : ACM_STREAMSIZEF_DESTINATION);
        m_in.resize(encodes ? kPcmBytes : other);
        m_out.resize(encodes ? other : kPcmBytes);
        m_header.cbStruct = sizeof m_header;
        m_header.pbSrc = m_in.data();
        m_header.cbSrcLength = static_cast<DWORD>(m_in.size());
        m_header.pbDst = m_out.data();
        m_header.cbDstLength = static_cast<DWORD>(m_out.size());
        acmStreamPrepareHeader(m_stream, &m_header, 0);
    }
    ~BareCodec() {
        m_header.cbSrcLength = static_cast<DWORD>(m_in.size());
        acmStreamUnprepareHeader(m_stream, &m_header, 0);
        acmStreamClose(m_stream, 0);
    }
    BareCodec(const BareCodec&) = delete;
    BareCodec& operator=(const BareCodec&) = delete;

    std::span<uint8_t> Free() { return std::span(m_in).subspan(m_used); }
    // Converts the bytes that were put into Free(); bytes that the codec leaves move to the front.
    std::span<const uint8_t> Convert(size_t added) {
        m_header.cbSrcLength = static_cast<DWORD>(m_used + added);
        acmStreamConvert(m_stream, &m_header, ACM_STREAMCONVERTF_BLOCKALIGN);
        m_used = m_header.cbSrcLength - m_header.cbSrcLengthUsed;
        std::memmove(m_in.data(), m_in.data() + m_header.cbSrcLengthUsed, m_used);
        return std::span(m_out).first(m_header.cbDstLengthUsed);
    }

private:
    static WAVEFORMATEX* Record(const LWaveFileFormat& format) {
        return reinterpret_cast<WAVEFORMATEX*>(const_cast<uint8_t*>(format.Bytes().data()));
    }

    HACMSTREAM m_stream = nullptr;
    ACMSTREAMHEADER m_header = {};
    std::vector<uint8_t> m_in;
    std::vector<uint8_t> m_out;
    size_t m_used = 0;
};
