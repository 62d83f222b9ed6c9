#pragma once

#include <cstdint>

#include "base/LWaveFileFormat.h"

// Format records on their way from a file to the compression manager. A codec trusts the record that it is
// given: it divides by its fields and fills as many bytes as they say, while a file may hold any values
// there.
// Thread: any; pure functions.

// A record that is safe to give to a codec, made from one of a file:
// - The extensible tag with a sub-format of the standard family becomes the plain tag.
// - PCM gets whole bytes, and a block align and byte rate that fit its other fields.
// - The extra byte count never leads beyond the record.
// - The block codecs of our table get the samples per block that follow from their block align, the G.711
//   laws their true block align, Microsoft ADPCM as many coefficients as it claims.
// - The byte rate is one that is possible for the format.
// Block align 0 marks a record that no codec may have, such as one with blocks of more than 65,535 frames.
LWaveFileFormat LAcmRecord(const LWaveFileFormat& format);

// Whether a codec may be given such a record. PCM of more than two channels may not: some managers accept it
// and then treat it as stereo.
bool LAcmMayConvert(const LWaveFileFormat& record);

// Frames in a block of block align bytes, where the format alone tells: PCM, the G.711 laws, the ADPCM kinds
// and GSM 6.10. 0 for all others. The record is one of LAcmRecord().
int32_t LAcmBlockFrames(const LWaveFileFormat& record);

// Frames that a codec of that format must decode before a place, so that the sound there equals that of
// decoding the whole file. 0 where each block stands for itself; at most kBlockFrames.
int32_t LAcmWarmUpFrames(const LWaveFileFormat& record);

// 16-bit PCM of a format's channels and rate: the input of encoding into it, and the output of decoding it.
LWaveFileFormat LAcmPcm(const LWaveFileFormat& format);
