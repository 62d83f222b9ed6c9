#pragma once

#include <memory>

#include "app/import/ForeignDecoders.h"

// The libraries of this machine (ForeignLibraries_win.h). They are loaded by their full paths alone: the one
// for Real Audio from the folder that the registry names, the others from the program's folder or the
// system's, never from the current folder or that of the audio file.
std::unique_ptr<ForeignDecoders> MakeForeignDecoders();
