#pragma once

#include <cstddef>
#include <cstdint>

// The published initial state of Blowfish (B. Schneier, "Description of a New Variable-Length Key, 64-Bit
// Block Cipher", 1993): 18 subkeys, then four substitution boxes of 256 words, together the first 33344 bits
// of the fraction of pi.
constexpr size_t kBlowfishPWords = 18;
constexpr size_t kBlowfishBoxes = 4;
constexpr size_t kBlowfishBoxWords = 256;

extern const uint32_t kBlowfishP[kBlowfishPWords];
extern const uint32_t kBlowfishS[kBlowfishBoxes][kBlowfishBoxWords];
