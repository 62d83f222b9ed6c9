#pragma once

#include <windows.h>

// A function of a loaded system library that the oldest platform lacks; nullptr there. Importing it instead
// would keep the program from starting on that platform.
template <class Function>
Function LSystemFunction(const char* name, const char* library = "kernel32.dll") {
    // Cast through void*, since the compiler rightly doubts casts between function types.
    return reinterpret_cast<Function>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA(library), name)));
}
