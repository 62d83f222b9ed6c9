#pragma once

#include "install/InstallPlan.h"

// The question before an installation: where, and for whom. Changes the plan to what the user chose; false
// when he cancels. neededKb: what the files need.
// Thread: the window thread.
bool AskForInstallation(InstallPlan& plan, uint32_t neededKb);
