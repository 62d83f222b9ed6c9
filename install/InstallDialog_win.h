#pragma once

#include "install/InstallPlan.h"
#include "install/SetupPackage.h"

// The question before an installation: where, and for whom. Changes the plan to what the user chose; false
// when he cancels.
// Thread: the window thread.
bool AskForInstallation(InstallPlan& plan, const SetupPackage& package);
