#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "base/LWaveFileFormat.h"

// The platform's audio compression manager, as far as files need it: conversions from format to format by
// whatever codecs the machine has. A codec is foreign code, and so what it answers is not to be believed:
// LAcmStream checks it. Nothing else uses a conversion directly.
// Units:  bytes.
// Errors: operations return false, sizes 0; the caller traces what that means.
// Thread: one at a time.
class LAcmConversion {
public:
    // How a conversion treats what does not fill a block: it stays in the input, or it is the end of the
    // material, and what the codec holds back comes out too.
    enum class Flag { BlockAlign, End };
    struct Used {
        uint32_t input = 0;
        uint32_t output = 0;
    };

    virtual ~LAcmConversion() = default;

    // The buffer that a whole input of that size needs, and the input that fills a buffer of that size.
    virtual uint32_t OutputSize(uint32_t inputBytes) = 0;
    virtual uint32_t InputSize(uint32_t outputBytes) = 0;
    // Ties the conversion to its two buffers. They stay where they are until Unprepare().
    virtual bool Prepare(std::span<uint8_t> input, std::span<uint8_t> output) = 0;
    // Converts the first inputBytes of the input buffer to the start of the output buffer. used is what the
    // codec says.
    virtual bool Convert(uint32_t inputBytes, Flag flag, Used& used) = 0;
    // What comes next has nothing to do with what came before.
    virtual bool Restart() = 0;
    virtual bool Unprepare() = 0;
    // The conversion cannot be used afterwards.
    virtual bool Close() = 0;
};

enum class LAcmTiming { RealTime, NonRealTime };

// Opens a conversion. True and nevertheless empty: a codec that claims success and gives no handle.
using LAcmOpener = bool (*)(const LWaveFileFormat& from, const LWaveFileFormat& to, LAcmTiming timing,
                            std::unique_ptr<LAcmConversion>& conversion);

// The opener of the machine. The records must be such as LAcmRecord() makes.
bool LAcmOpen(const LWaveFileFormat& from, const LWaveFileFormat& to, LAcmTiming timing,
              std::unique_ptr<LAcmConversion>& conversion);
// Whether such a conversion could be opened; opens none.
bool LAcmQuery(const LWaveFileFormat& from, const LWaveFileFormat& to);

// Whether this machine makes the format: converts 16-bit PCM of its channels and rate into it.
inline bool TestSupportedRecord(const LWaveFileFormat& format) {
    return LAcmQuery(LWaveFileFormat::Pcm(16, format.Channels(), format.SampleRate()), format);
}
