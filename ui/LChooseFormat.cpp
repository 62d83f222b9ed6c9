#include "ui/LChooseFormat.h"

#include <mmsystem.h>

#include <mmreg.h>
#include <msacm.h>

#include <algorithm>

#include "base/LText.h"
#include "base/LTrace.h"

namespace {

static_assert(sizeof(WAVEFORMATEX) == LWaveFileFormat::kFixedSize);

// A format as the platform's structure, in a buffer of the full 1024 bytes: the chooser reads as many extra
// bytes as the structure states, and may write into the whole buffer.
class AcmRecord {
public:
    explicit AcmRecord(const LWaveFileFormat& format) : m_bytes() {
        std::ranges::copy(format.Bytes(), m_bytes.begin());
        Get()->cbSize = format.ExtraBytes();
    }
    WAVEFORMATEX* Get() { return reinterpret_cast<WAVEFORMATEX*>(m_bytes.data()); }
    LWaveFileFormat Format() const { return LWaveFileFormat(m_bytes); }

private:
    alignas(WAVEFORMATEX) std::array<uint8_t, LWaveFileFormat::kSize> m_bytes;
};

constexpr char kNotAvailable[] =
    "The requested format is not available because the required CODEC is not installed on this computer.";

}  // namespace

bool LChooseFormat(HWND owner, LWaveFileFormat& format, uint16_t channels, LFormatTest isSupported) {
    AcmRecord chosen(format);
    AcmRecord wanted(LWaveFileFormat::Pcm(16, channels, format.SampleRate()));
    for (;;) {
        ACMFORMATCHOOSEA choose = {};
        choose.cbStruct = sizeof choose;
        choose.fdwStyle = ACMFORMATCHOOSE_STYLEF_INITTOWFXSTRUCT;
        choose.hwndOwner = owner;
        choose.pwfx = chosen.Get();
        choose.cbwfx = LWaveFileFormat::kSize;
        if (channels != 0) {
            choose.fdwEnum = ACM_FORMATENUMF_NCHANNELS;
            choose.pwfxEnum = wanted.Get();
        }
        const MMRESULT result = acmFormatChooseA(&choose);
        if (result == ACMERR_CANCELED) return false;
        if (result != 0) {
            LTrace("LChooseFormat acmFormatChoose ERROR");
            return false;
        }
        if (const LWaveFileFormat answer = chosen.Format(); isSupported(answer)) {
            format = answer;
            return true;
        }
        LMessageBox(owner, kNotAvailable, "Format Not Available", MB_OK | MB_ICONWARNING);
    }
}

std::string LDescribeFormat(const LWaveFileFormat& format) {
    AcmRecord record(format);
    ACMFORMATTAGDETAILSA tag = {};
    tag.cbStruct = sizeof tag;
    tag.dwFormatTag = format.Tag();
    ACMFORMATDETAILSA details = {};
    details.cbStruct = sizeof details;
    details.dwFormatTag = format.Tag();
    details.pwfx = record.Get();
    details.cbwfx = LWaveFileFormat::kSize;
    const bool isKnown = acmFormatTagDetailsA(nullptr, &tag, ACM_FORMATTAGDETAILSF_FORMATTAG) == 0 &&
                         acmFormatDetailsA(nullptr, &details, ACM_FORMATDETAILSF_FORMAT) == 0;
    if (isKnown) return LFormat("%.47s, %.127s", tag.szFormatTag, details.szFormat);
    return LFormat("Format %u, %lu Hz", unsigned{format.Tag()},
                   static_cast<unsigned long>(format.SampleRate()));
}
