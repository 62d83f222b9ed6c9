#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "base/LWaveFileFormat.h"

// The head of the WAV files that we write, shared by writer and reader (RIFF WAVE with an 18-byte format
// record). Little-endian, with x the format's extra bytes (none in PCM):
//    0 "RIFF"       4 RIFF size = x + data bytes + 38   8 "WAVE"
//   12 "fmt "      16 fmt size = 18 + x                20 format record
//   38 + x "data"  42 + x data bytes                   46 + x samples or compressed data
// While the file is being written both sizes hold kWaveSizeUnknown: a reader takes the data to run to the end
// of the file, so a recording can be played while it runs and survives a crash.
// Units:  bytes.
// Thread: any; pure functions.
constexpr int64_t kWaveHeaderBytes = 46;
constexpr uint32_t kWaveSizeUnknown = 0xFFFFFFFFu;
constexpr uint32_t kWaveSizeBeforeData = 38;  // bytes between the RIFF size field and the data
// The most data bytes whose RIFF size still differs from kWaveSizeUnknown.
constexpr int64_t kWaveMaxDataBytes = int64_t{kWaveSizeUnknown} - 1 - kWaveSizeBeforeData;

using LWaveHeader = std::array<uint8_t, kWaveHeaderBytes>;

// The head of a file of any format; dataBytes may be kWaveSizeUnknown.
std::vector<uint8_t> WaveHeader(const LWaveFileFormat& format, uint32_t dataBytes);

// The head of a PCM file; dataBytes may be kWaveSizeUnknown.
LWaveHeader WavePcmHeader(int bytesPerSample, uint8_t channels, int32_t sampleRate, uint32_t dataBytes);

// Whether two such headers differ in nothing but their two sizes.
bool WaveHeadersAgree(const LWaveHeader& a, const LWaveHeader& b);
