#pragma once

#include <string_view>

// Reports a failure, once, where it is detected: class, "::", method, blank, reason, and where it helps a
// detail (a path, a number). Without a sink, as in the shipped program, the line goes nowhere; tests install
// one.
// Thread: any. The sink is set before threads start.
void LTrace(std::string_view line, std::string_view detail = {});

using LTraceSink = void (*)(std::string_view line, std::string_view detail);

// Installs a sink (nullptr: none) and returns the one that was installed before.
LTraceSink LSetTraceSink(LTraceSink sink);
