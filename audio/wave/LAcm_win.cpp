#include <windows.h>

#include <mmsystem.h>

#include <mmreg.h>
#include <msacm.h>

#include <array>

#include "audio/wave/LAcm.h"

// The compression manager of Windows (msacm32). A conversion keeps its stream, both formats and the prepared
// header, so that it can be opened anew: see Restart.

namespace {

static_assert(sizeof(WAVEFORMATEX) == LWaveFileFormat::kFixedSize);

// The manager does not change the records, although its functions take them without const.
WAVEFORMATEX* Record(const LWaveFileFormat& format) {
    return reinterpret_cast<WAVEFORMATEX*>(const_cast<uint8_t*>(format.Bytes().data()));
}

bool OpenStream(HACMSTREAM* stream, const LWaveFileFormat& from, const LWaveFileFormat& to, DWORD flags) {
    return acmStreamOpen(stream, nullptr, Record(from), Record(to), nullptr, 0, 0, flags) == 0;
}

class Conversion final : public LAcmConversion {
public:
    Conversion(HACMSTREAM stream, const LWaveFileFormat& from, const LWaveFileFormat& to, DWORD flags)
        : m_stream(stream), m_from(from), m_to(to), m_flags(flags) {}
    ~Conversion() override { Close(); }
    Conversion(const Conversion&) = delete;
    Conversion& operator=(const Conversion&) = delete;

    uint32_t OutputSize(uint32_t inputBytes) override { return Size(inputBytes, ACM_STREAMSIZEF_SOURCE); }
    uint32_t InputSize(uint32_t outputBytes) override {
        return Size(outputBytes, ACM_STREAMSIZEF_DESTINATION);
    }

    bool Prepare(std::span<uint8_t> input, std::span<uint8_t> output) override {
        m_input = input;
        m_output = output;
        m_header = {};
        m_header.cbStruct = sizeof m_header;
        m_header.pbSrc = input.data();
        m_header.cbSrcLength = static_cast<DWORD>(input.size());
        m_header.pbDst = output.data();
        m_header.cbDstLength = static_cast<DWORD>(output.size());
        return acmStreamPrepareHeader(m_stream, &m_header, 0) == 0;
    }

    bool Convert(uint32_t inputBytes, Flag flag, Used& used) override {
        m_header.cbSrcLength = inputBytes;
        m_header.cbSrcLengthUsed = 0;
        m_header.cbDstLengthUsed = 0;
        const DWORD flags =
            m_start | (flag == Flag::BlockAlign ? ACM_STREAMCONVERTF_BLOCKALIGN : ACM_STREAMCONVERTF_END);
        if (acmStreamConvert(m_stream, &m_header, flags) != 0) return false;
        m_start = 0;
        used = {m_header.cbSrcLengthUsed, m_header.cbDstLengthUsed};
        return true;
    }

    // Opens a new stream in place of this one, since some codecs do not forget the material before when they
    // are only reset. The reset is the fallback where no second stream opens.
    bool Restart() override {
        m_start = ACM_STREAMCONVERTF_START;
        HACMSTREAM stream = nullptr;
        if (!OpenStream(&stream, m_from, m_to, m_flags) || !stream) return acmStreamReset(m_stream, 0) == 0;
        Unprepare();
        Close();
        m_stream = stream;
        return Prepare(m_input, m_output);
    }

    bool Unprepare() override {
        m_header.cbSrcLength = static_cast<DWORD>(m_input.size());
        m_header.cbDstLength = static_cast<DWORD>(m_output.size());
        return acmStreamUnprepareHeader(m_stream, &m_header, 0) == 0;
    }

    bool Close() override {
        HACMSTREAM stream = m_stream;
        m_stream = nullptr;
        return !stream || acmStreamClose(stream, 0) == 0;
    }

private:
    uint32_t Size(DWORD bytes, DWORD flag) {
        DWORD other = 0;
        return acmStreamSize(m_stream, bytes, &other, flag) == 0 ? other : 0;
    }

    HACMSTREAM m_stream;
    LWaveFileFormat m_from;
    LWaveFileFormat m_to;
    DWORD m_flags;
    ACMSTREAMHEADER m_header = {};
    std::span<uint8_t> m_input;
    std::span<uint8_t> m_output;
    DWORD m_start = ACM_STREAMCONVERTF_START;
};

}  // namespace

bool LAcmOpen(const LWaveFileFormat& from, const LWaveFileFormat& to, LAcmTiming timing,
              std::unique_ptr<LAcmConversion>& conversion) {
    const DWORD flags = timing == LAcmTiming::NonRealTime ? ACM_STREAMOPENF_NONREALTIME : 0;
    HACMSTREAM stream = nullptr;
    if (!OpenStream(&stream, from, to, flags)) return false;
    if (stream) conversion = std::make_unique<Conversion>(stream, from, to, flags);
    return true;
}

bool LAcmQuery(const LWaveFileFormat& from, const LWaveFileFormat& to) {
    return OpenStream(nullptr, from, to, ACM_STREAMOPENF_QUERY) ||
           OpenStream(nullptr, from, to, ACM_STREAMOPENF_QUERY | ACM_STREAMOPENF_NONREALTIME);
}

bool LAcmSuggest(const LWaveFileFormat& pcm, uint16_t tag, LWaveFileFormat& format) {
    std::array<uint8_t, LWaveFileFormat::kSize> bytes{};
    auto* record = reinterpret_cast<WAVEFORMATEX*>(bytes.data());
    record->wFormatTag = tag;
    record->nChannels = pcm.Channels();
    record->nSamplesPerSec = pcm.SampleRate();
    constexpr DWORD kFixed =
        ACM_FORMATSUGGESTF_WFORMATTAG | ACM_FORMATSUGGESTF_NCHANNELS | ACM_FORMATSUGGESTF_NSAMPLESPERSEC;
    if (acmFormatSuggest(nullptr, Record(pcm), record, static_cast<DWORD>(bytes.size()), kFixed) != 0)
        return false;
    format = LWaveFileFormat(bytes);
    return true;
}
