#pragma once

#include <string>

#include "base/LWaveFileFormat.h"
#include "ui/LWin.h"

// Whether a codec of this machine writes the format.
using LFormatTest = bool (*)(const LWaveFileFormat& format);

// Shows the platform's format chooser (Audio Compression Manager), beginning with the given format. channels:
// number of channels to which the list is limited, 0 for no limit. A format that the test refuses is reported
// in a warning box, and the chooser is shown again.
// Errors: false, with the format unchanged, when the user cancels or the chooser cannot be shown (traced).
// Thread: the window thread.
bool LChooseFormat(HWND owner, LWaveFileFormat& format, uint16_t channels, LFormatTest isSupported);

// The codec's own words, "GSM 6.10, 8.000 kHz, Mono"; the numbers of the format where no codec knows it.
std::string LDescribeFormat(const LWaveFileFormat& format);
