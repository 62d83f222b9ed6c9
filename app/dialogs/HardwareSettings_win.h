#pragma once

#include "base/LPath.h"
#include "ui/LModalRunner.h"

// Shows the sheet "Hardware Settings". Stops the transport first. The caller has taken back the hot keys and
// closed the pedals, so that both can be pressed in the sheet.
// Thread: the window thread.
void ShowHardwareSettings(const LPath& settingsFile, LModalRunner& runner);
