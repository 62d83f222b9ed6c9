#pragma once

#include <vector>

#include "store/CurrentUser.h"

// The data folder that the machine's part of the registry names; where it names none, or one that is gone,
// the one of the user's part, where somebody has installed Corvane for himself alone. Without either the
// default folder, which is created so that every user of the machine may write dictations into it. Restores
// the settings file from its copy when a crash in the middle of a change left only the copy.
DataFolder FindDataFolder();

// The default folder of a new installation: "Mervald\Corvane" below the folder for programs, "C:\Corvane"
// where the registry names none.
LPath DefaultDataFolder();

// Creates a folder in which everyone has all access, sub-folders and files included; a plain folder where the
// platform has no access rights. False when it was not created, also because it exists.
bool MakeFolderForEveryone(const LPath& folder);

// Makes a folder and those above it that are missing, for everyone as above or with the access of the folder
// they lie in. Returns those that were made, the outermost first; whether the folder is there now is for the
// caller to see.
enum class FolderAccess { Everyone, Inherited };
std::vector<LPath> MakeFolders(const LPath& folder, FolderAccess access);
