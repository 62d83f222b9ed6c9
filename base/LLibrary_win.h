#pragma once

#include <windows.h>

#include "base/LOwned.h"
#include "base/LPath.h"

struct LibraryTraits {
    using Type = HMODULE;
    static Type None() { return nullptr; }
    static void Close(Type h) { FreeLibrary(h); }
};
using LLibrary = LOwned<LibraryTraits>;

// Loads an add-on library, such as "HidProbe.dll", from the program's folder, else from the system folder; by
// its full path, so that nothing is ever loaded from a folder that happens to be the current one. Empty when
// neither folder has one that can be loaded; the platform shows no box about it.
// Thread: any.
LLibrary LLoadAddOn(const char* fileName);

// A function that a library exports; nullptr when it does not.
template <class Function>
Function LFunctionOf(const LLibrary& library, const char* name) {
    // Cast through void*, since the compiler rightly doubts casts between function types.
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library.Get(), name)));
}

// The full path of a program that belongs to the platform, which lies in the system folder or, in Windows 95
// to Me, in that of Windows. Empty when it is missing.
LPath LPlatformProgram(const char* fileName);
