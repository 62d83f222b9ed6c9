#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "base/LWaveFileFormat.h"

// The platform's audio compression manager, as far as files need it: conversions from one format to another
// by the codecs of the machine. A codec is foreign code, so its answers are not trusted: LAcmStream checks
// them, and nothing else uses a conversion directly.
// This header is a seam: the product opens the platform's codecs, the portable tests a stand-in.
// Units:  bytes.
// Errors: operations return false, sizes 0; the caller traces the failure.
// Thread: one at a time.
class LAcmConversion {
public:
    // How a conversion treats input that does not fill a block. BlockAlign leaves it in the input. End takes
    // it as the end of the material, and the codec gives out the material that it still holds.
    enum class Flag { BlockAlign, End };
    struct Used {
        uint32_t input = 0;
        uint32_t output = 0;
    };

    virtual ~LAcmConversion() = default;

    // OutputSize: the buffer that an input of that size needs. InputSize: the input that fills a buffer of
    // that size.
    virtual uint32_t OutputSize(uint32_t inputBytes) = 0;
    virtual uint32_t InputSize(uint32_t outputBytes) = 0;
    // Ties the conversion to its two buffers. They stay where they are until Unprepare().
    virtual bool Prepare(std::span<uint8_t> input, std::span<uint8_t> output) = 0;
    // Converts the first inputBytes of the input buffer to the start of the output buffer. used receives the
    // codec's own count of consumed and produced bytes.
    virtual bool Convert(uint32_t inputBytes, Flag flag, Used& used) = 0;
    // Forgets the material so far: the next input begins anew.
    virtual bool Restart() = 0;
    virtual bool Unprepare() = 0;
    // The conversion cannot be used afterwards.
    virtual bool Close() = 0;
};

// Whether a codec must keep up with playing. Some codecs open only when it need not.
enum class LAcmTiming { RealTime, NonRealTime };

// Opens a conversion. True with an empty handle stands for a codec that claims success and gives no handle.
using LAcmOpener = bool (*)(const LWaveFileFormat& from, const LWaveFileFormat& to, LAcmTiming timing,
                            std::unique_ptr<LAcmConversion>& conversion);

// The opener for the codecs of the machine. Both records have passed LAcmRecord().
bool LAcmOpen(const LWaveFileFormat& from, const LWaveFileFormat& to, LAcmTiming timing,
              std::unique_ptr<LAcmConversion>& conversion);
// Whether some codec offers this conversion; opens none.
bool LAcmQuery(const LWaveFileFormat& from, const LWaveFileFormat& to);

// The record that a codec of the machine prefers for making this tag from PCM of the same channels and rate.
bool LAcmSuggest(const LWaveFileFormat& pcm, uint16_t tag, LWaveFileFormat& format);

// Whether a codec of this machine makes the format from 16-bit PCM of the same channels and rate.
inline bool TestSupportedRecord(const LWaveFileFormat& format) {
    return LAcmQuery(LWaveFileFormat::Pcm(16, format.Channels(), format.SampleRate()), format);
}
