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

// Loads a library by its full path; any other path would name a file of whichever folder is current. What the
// library needs in turn is looked for beside it. Empty when it cannot be loaded; the platform shows no box
// about it.
// Thread: any.
LLibrary LLoadLibraryAt(const LPath& path);

// What the platform loads by its name alone is no longer looked for in the current folder, which may be any
// that the user chose a file in. To be called first; without effect before Windows XP.
void LIgnoreLibrariesOfCurrentFolder();

// For a run as set-up program or remover, before its first window: what the platform loads by its name alone
// comes from the system folder, not from the program's either. Before Windows Vista this holds for the
// libraries that a set-up is known to need.
void LKeepToSystemLibraries();

// Loads an add-on library, such as "HidProbe.dll", from the program's folder, else from the system folder.
// Empty when neither folder has one that can be loaded.
// Thread: any.
LLibrary LLoadAddOn(const char* fileName);

// Loads a library of the platform, such as "ole32.dll", from the system folder alone: one of its name beside
// the program may be anybody's. Empty when it cannot be loaded.
// Thread: any.
LLibrary LLoadSystemLibrary(const char* fileName);

// A function that a library exports; nullptr when it does not.
template <class Function>
Function LFunctionOf(const LLibrary& library, const char* name) {
    // Cast through void*, since the compiler rightly doubts casts between function types.
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library.Get(), name)));
}

// The full path of a program that belongs to the platform, which lies in the system folder or, in Windows 95
// to Me, in that of Windows. Empty when it is missing.
LPath LPlatformProgram(const char* fileName);

// The folder of Windows; empty when its name is too long.
LPath LWindowsFolder();
