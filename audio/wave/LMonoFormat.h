#pragma once

#include "base/LWaveFileFormat.h"

// The format with one channel, at the same rate and in the same kind of audio: itself when it is mono
// already. Of a compressed format that is the half of each block where a codec of the machine makes that,
// else what such a codec suggests. Where none does either, the result is a format that no sink opens.
// Thread: any.
LWaveFileFormat LMonoFormat(const LWaveFileFormat& format);
