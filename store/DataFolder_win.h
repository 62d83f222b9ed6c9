#pragma once

#include "store/CurrentUser.h"

// The key of the machine's registry that tells the folders, with the values "DataFiles" and "ProgramFiles".
inline constexpr char kFoldersKey[] = "Software\\Mervald\\Corvane\\CurrentVersion\\Folders";

// The data folder that the registry of this machine names; without one, the default folder below the folder
// for programs, created so that every user of the machine may write dictations into it.
DataFolder FindDataFolder();

// The default folder by itself, created: where a new installation goes.
LPath MakeDefaultDataFolder();

// Creates a folder in which everyone has every right, sub-folders and files included, where the platform
// knows of rights; otherwise a plain one. False when it could not be created (it may exist).
bool MakeFolderForEveryone(const LPath& folder);
