#pragma once

#include "audio/stream/LSoundSource.h"
#include "base/LPath.h"
#include "base/LProcess.h"

// What became of the decoding of a whole source into a file. NotRead: the source has its error bit set, or
// ended before its end. NotWritten: the file cannot be made, or the disk is full.
enum class LDecoded { Whole, Stopped, NotRead, NotWritten };

// Pumps a source into a new file of 16-bit PCM with the source's rate and channels (LPRSourceToSink), and
// proves the file: the source delivered all of its material, and the file read again holds it. An existing
// file is replaced; what is not Whole leaves a file for the caller to delete.
// Thread: that of the context.
LDecoded LDecodeWave(const LSoundSource& source, const LPath& path, ProcessContext& context);
