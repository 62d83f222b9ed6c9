#pragma once

#include "audio/mp3/MP3Kernels.h"
#include "audio/mp3/MP3Layout.h"

// The lines of both channels of a granule, in the order of transmission, with the number from which on all
// are 0.
struct MP3StereoLines {
    float* left;
    float* right;
    size_t leftEnd;
    size_t rightEnd;
};

// Middle and side become left and right (the root of 1/2 is in the gains already); where the right channel is
// empty at the top and the frame says so, both come from the left one by the positions in the right channel's
// scale factors.
void MP3JoinStereo(const MP3Header& header, const MP3Granule& right, const MP3ScaleFactors& rightFactors,
                   const MP3Layout& layout, const MP3Kernels& kernels, MP3StereoLines& lines);
