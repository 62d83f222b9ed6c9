#pragma once

#include "store/CurrentUser.h"

// The registry key of the machine with the folders, in the values "DataFiles" and "ProgramFiles".
inline constexpr char kFoldersKey[] = "Software\\Mervald\\Corvane\\CurrentVersion\\Folders";

// The data folder named by the registry of this machine; without one, the default folder, which is created so
// that every user of the machine may write dictations into it. Restores the settings file from its copy when
// a crash in the middle of a change left only the copy.
DataFolder FindDataFolder();

// Creates and returns the default folder for a new installation: "Mervald\Corvane" below the folder for
// programs, "C:\Corvane" where the registry names none.
LPath MakeDefaultDataFolder();

// Creates a folder in which everyone has all access, sub-folders and files included; a plain folder where the
// platform has no access rights. False when it was not created, also because it exists.
bool MakeFolderForEveryone(const LPath& folder);
