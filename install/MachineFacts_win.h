#pragma once

#include "install/InstallPlan.h"

// Looks at the registry, the folders and the rights of this user. Nothing is changed, but that a file is made
// and deleted where programs are put.
MachineFacts ReadMachineFacts();

// Whether files can be made in a folder, or, as long as it is missing, in the nearest one above it.
bool MayMakeFilesIn(const LPath& folder);
// The free space for a folder, in KB, whether it is there or not; the largest value when it is unknown.
uint64_t FreeKbFor(const LPath& folder);
