#pragma once

#include <windows.h>

// What winctl.exe and menuprobe.dll share: a named block with the question and the answer.
constexpr char kMenuProbeName[] = "CorvaneTestMenuProbe";

struct MenuProbeAnswer {
    HWND window;
    char text[60000];  // JSON; empty when it does not fit
};
