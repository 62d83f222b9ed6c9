#pragma once

#include <cstdlib>

#include "base/LFile.h"

inline void Require(bool holds) {
    if (!holds) std::abort();
}

// A file for the inputs of one run, gone with it.
struct Scratch {
    ~Scratch() { LFile::Delete(path), LFile::Delete(path.WithExtension(".lck")); }
    LPath path = LFile::MakeTemporary("cvf");
};

// A folder for them.
struct ScratchFolder : Scratch {
    ScratchFolder() { LFile::Delete(path), LFile::MakeFolder(path); }
};
