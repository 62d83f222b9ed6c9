#pragma once

#include "base/LWaveFileFormat.h"
#include "ui/LWin.h"

// Whether a format can be made on this machine.
using LFormatTest = bool (*)(const LWaveFileFormat& format);

// Shows the platform's format chooser, beginning with the given format; with channels other than 0 only
// formats of so many. A format that the test refuses is told in a warning box, and the chooser shown again.
// False, with the format as it was, when the user cancels or there is no chooser (traced). Thread: the window
// thread.
bool LChooseFormat(HWND owner, LWaveFileFormat& format, uint16_t channels, LFormatTest isSupported);
