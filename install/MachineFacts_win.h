#pragma once

#include "install/InstallPlan.h"

// Looks at the registry, the folders and the rights of this user. Nothing is changed, but that a file is made
// and deleted where programs are put.
MachineFacts ReadMachineFacts();
