#include "audio/wave/LAcm.h"

// A machine without codecs.

bool LAcmOpen(const LWaveFileFormat&, const LWaveFileFormat&, LAcmTiming, std::unique_ptr<LAcmConversion>&) {
    return false;
}

bool LAcmQuery(const LWaveFileFormat&, const LWaveFileFormat&) {
    return false;
}
