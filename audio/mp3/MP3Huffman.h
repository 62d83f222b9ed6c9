#pragma once

#include "audio/mp3/MP3Layout.h"

// The gain of each band of a granule, in the order of MP3Layout::Widths. factor goes into all of them.
void MP3BandGains(const MP3Granule& granule, const MP3ScaleFactors& factors, const MP3Layout& layout,
                  float factor, float* gains);

// Reads the codes of a granule, up to the bit end, and multiplies the values with their bands' gains. All 576
// lines are written; those that the bits do not reach are 0. Returns the number of lines from which on all
// are 0.
size_t MP3ReadLines(MP3BitReader bits, int32_t end, const MP3Granule& granule, const MP3Layout& layout,
                    const float* gains, float* lines);
