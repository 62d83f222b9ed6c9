#pragma once

#include <windows.h>

#include <cstdint>

// The entry points of the libraries that decode the formats of other programs, as ForeignDecoders_win.cpp
// calls them: in the order given here, on one thread. Paths end in a zero byte, samples are interleaved and
// of 16 bits, rates are in Hz.

// pnen3260.dll. CreateEngine makes an engine (0: success) and CloseEngine ends it. In between the engine
// opens one file.
struct RealAudioEngine {
    // "file:C:\a.ra". 0: opened; frames: the length, 0 where it is unknown.
    virtual int32_t __stdcall Open(const char* url, int32_t* sampleRate, int32_t* channels,
                                   int32_t* frames) = 0;
    // The count of frames that were decoded; 0 at the end, below 0 after a failure.
    virtual int32_t __stdcall Read(int16_t* samples, int32_t frames) = 0;

protected:
    ~RealAudioEngine() = default;  // CloseEngine's business
};
using CreateEngineFunction = int32_t(__stdcall*)(RealAudioEngine** engine);
using CloseEngineFunction = void(__stdcall*)(RealAudioEngine* engine);
inline constexpr char kCreateEngine[] = "CreateEngine";
inline constexpr char kCloseEngine[] = "CloseEngine";

// SrPump.dll. Writes a whole WAV file. Its answer is not known, so the file tells.
using ConvertSriFunction = int32_t(__stdcall*)(const char* source, const char* wave);
inline constexpr char kConvertSri[] = "_Sr_CvtSri2WaveFile@8";

// dsscore.dll, which decodes one file at a time and forgets it when it is released. The first two answer
// with 0 after a failure; frames as above.
using DssInitFunction = int32_t(__cdecl*)(const char* source, int32_t* sampleRate, int32_t* channels,
                                          int32_t* frames);
using DssStartFunction = int32_t(__cdecl*)();
using DssDecodeFunction = int32_t(__cdecl*)(int16_t* samples, int32_t frames);
inline constexpr char kDssInit[] = "DSSInitDecoder";
inline constexpr char kDssStart[] = "DSSStartDecoding";
inline constexpr char kDssDecode[] = "DSSDecodeToPCM";
