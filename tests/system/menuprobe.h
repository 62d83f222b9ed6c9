#pragma once

#include <cstddef>

// What winctl.exe and menuprobe.dll share: the name of the message that asks and of the block of memory
// for the answer, which is JSON; empty when it does not fit.
constexpr char kMenuProbeName[] = "CorvaneTestMenuProbe";
constexpr size_t kMenuProbeBytes = 60000;
