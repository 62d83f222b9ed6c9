#pragma once

#include <cstddef>
#include <cstdint>

// The published initial state of Blowfish: 18 subkeys, then four substitution boxes, all of them the
// hexadecimal digits of pi in order.
constexpr size_t kBlowfishPWords = 18;
constexpr size_t kBlowfishBoxes = 4;
constexpr size_t kBlowfishBoxWords = 256;

extern const uint32_t kBlowfishP[kBlowfishPWords];
extern const uint32_t kBlowfishS[kBlowfishBoxes][kBlowfishBoxWords];
