#include <windows.h>

#include <mmsystem.h>

#include <mmreg.h>
#include <msacm.h>

#include <algorithm>

#include "base/LTrace.h"
#include "base/LWaveFileFormat.h"

static_assert(sizeof(WAVEFORMATEX) == LWaveFileFormat::kFixedSize);

// A format as the compression manager wants it: it reads as many extra bytes as the record says, and may write
// into the whole buffer.
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

bool LWaveFileFormat::TestSupportedRecord() const {
    AcmRecord pcm(Pcm(16, Channels(), SampleRate()));
    AcmRecord own(*this);
    const auto query = [&](DWORD flags) {
        return acmStreamOpen(nullptr, nullptr, pcm.Get(), own.Get(), nullptr, 0, 0,
                             ACM_STREAMOPENF_QUERY | flags) == 0;
    };
    return query(0) || query(ACM_STREAMOPENF_NONREALTIME);
}

bool LWaveFileFormat::ChooseFormat(uint16_t channels) {
    AcmRecord chosen(*this);
    AcmRecord wanted(Pcm(16, channels, SampleRate()));
    for (;;) {
        ACMFORMATCHOOSEA choose = {};
        choose.cbStruct = sizeof choose;
        choose.fdwStyle = ACMFORMATCHOOSE_STYLEF_INITTOWFXSTRUCT;
        choose.hwndOwner = GetActiveWindow();
        choose.pwfx = chosen.Get();
        choose.cbwfx = kSize;
        if (channels != 0) {
            choose.fdwEnum = ACM_FORMATENUMF_NCHANNELS;
            choose.pwfxEnum = wanted.Get();
        }
        const MMRESULT result = acmFormatChooseA(&choose);
        if (result == ACMERR_CANCELED) return false;
        if (result != 0) {
            LTrace("LWaveFileFormat::ChooseFormat acmFormatChoose ERROR");
            return false;
        }
        if (const LWaveFileFormat format = chosen.Format(); format.TestSupportedRecord()) {
            *this = format;
            return true;
        }
        MessageBoxA(GetActiveWindow(),
                    "The requested format is not available because the required CODEC is not installed on "
                    "this computer.",
                    "Format Not Available", MB_OK | MB_ICONWARNING);
    }
}
