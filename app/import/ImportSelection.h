#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "base/LPath.h"

// Bytes of the buffer in which the platform's open dialog returns the chosen names.
inline constexpr size_t kSelectionBytes = 32768;

// The files that were chosen in the platform's open dialog.
struct ImportSelection {
    LPath folder;  // the one that was shown last
    std::vector<LPath> files;

    // Reads the dialog's buffer: one path; or a folder and then the names in it. Each ends in a zero byte,
    // and an empty one ends the list. Names whose path is too long become empty paths.
    static ImportSelection Parse(std::span<const char> buffer);
};
