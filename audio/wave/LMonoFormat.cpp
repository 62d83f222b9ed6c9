#include "audio/wave/LMonoFormat.h"

#include "audio/wave/LAcm.h"
#include "audio/wave/LAcmRecord.h"
#include "base/LBytes.h"

// The ADPCM kinds and the G.711 laws give each channel its own part of a block, so a block of one channel is
// the corresponding part, with as many frames. LAcmRecord mends what does not follow.
static LWaveFileFormat OfOneChannel(const LWaveFileFormat& format) {
    const uint16_t channels = format.Channels();
    LByteWriter record;
    record.U16(format.Tag());
    record.U16(1);
    record.U32(format.SampleRate());
    record.U32(format.AverageBytesPerSecond() / channels);
    record.U16(static_cast<uint16_t>(format.BlockAlign() / channels));
    record.Bytes(format.Record().subspan(14));
    return LAcmRecord(LWaveFileFormat(record.View()));
}

LWaveFileFormat LMonoFormat(const LWaveFileFormat& format) {
    if (format.Channels() < 2) return format;
    if (format.Tag() == kFormatTagPcm)
        return LWaveFileFormat::Pcm(format.BitsPerSample(), 1, format.SampleRate());
    const LWaveFileFormat mono = OfOneChannel(format);
    LWaveFileFormat suggested;
    const bool isSuggested = !(LAcmMayConvert(mono) && TestSupportedRecord(mono)) &&
                             LAcmSuggest(LAcmPcm(mono), mono.Tag(), suggested);
    return isSuggested ? suggested : mono;
}
