#pragma once

#include <cstdint>

#include "base/LWaveFileFormat.h"

// Format records on their way from a file to the compression manager. Codecs trust the records they are
// given, and files hold anything.

// The record that a codec may be given. The extensible tag with a sub-format of the standard family becomes
// the plain tag; PCM gets whole bytes and a block align and byte rate that fit its other fields; the extra
// byte count never leads beyond the record; the block codecs of our table get the samples per block that
// their block align yields, the G.711 laws their true block align, MS ADPCM as many coefficients as it says,
// and all a byte rate that can be. Block align 0 marks a record that holds no sense, such as a block of more
// than 65,535 frames.
LWaveFileFormat LAcmRecord(const LWaveFileFormat& format);

// Whether a codec may be given such a record. PCM of more than two channels may not: there are managers that
// take it and then treat it as stereo.
bool LAcmMayConvert(const LWaveFileFormat& record);

// Frames in a block of block align bytes, where the format alone tells: PCM, the G.711 laws, the ADPCM kinds
// and GSM 6.10. 0 for all others. The record is one of LAcmRecord().
int32_t LAcmBlockFrames(const LWaveFileFormat& record);

// How many frames a codec of that format has to have decoded before a place for what it decodes there to be
// what it is when the whole file is decoded. 0 where each block stands for itself; up to a block of frames.
int32_t LAcmWarmUpFrames(const LWaveFileFormat& record);

// 16-bit PCM of the channels and rate of a format: what compressed audio is made of and becomes again.
LWaveFileFormat LAcmPcm(const LWaveFileFormat& format);
