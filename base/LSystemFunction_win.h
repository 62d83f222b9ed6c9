#pragma once

#include <windows.h>

// A function of the system library (kernel32) that the oldest platform lacks; nullptr there.
template <class Function>
Function LSystemFunction(const char* name) {
    // Through void*, since the compiler rightly doubts casts between function types.
    return reinterpret_cast<Function>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("kernel32.dll"), name)));
}
