#include "audio/wave/LAcm.h"

// A machine without codecs.

bool LAcmOpen(const LWaveFileFormat&, const LWaveFileFormat&, LAcmTiming, std::unique_ptr<LAcmConversion>&) {
    return false;
}

bool LAcmQuery(const LWaveFileFormat&, const LWaveFileFormat&) {
    return false;
}

bool LAcmSuggest(const LWaveFileFormat&, uint16_t, LWaveFileFormat&) {
    return false;
}
