#pragma once

#include "base/LPath.h"

// Folders of the Windows user and of all users of the machine, as the platform's shell has written them into
// the registry. Empty where it names none, or one of more than 259 characters.
struct ShellFolders {
    LPath desktop, commonDesktop;
    LPath programs, commonPrograms;  // of the start menu
    LPath localData;  // for files of this user's programs, on this machine where it tells them apart

    static ShellFolders Read();
};
