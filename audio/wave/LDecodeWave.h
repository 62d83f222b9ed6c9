#pragma once

#include "audio/stream/LSoundSource.h"
#include "base/LPath.h"
#include "base/LProcess.h"

// What became of the decoding of a whole source into a file. Cut: the file holds what the source delivered,
// which ended before its end. NotRead: the source has its error bit set, or could not be read at all.
// NotWritten: the file cannot be made, or the disk is full.
enum class LDecoded { Whole, Cut, Stopped, NotRead, NotWritten };

// Pumps a source into a new file of 16-bit PCM with the source's rate and channels (LPRSourceToSink), and
// proves the file: the source delivered all of its material, and the file read again holds it. An existing
// file is replaced; what is neither Whole nor Cut leaves a file for the caller to delete.
// Thread: that of the context.
LDecoded LDecodeWave(const LSoundSource& source, const LPath& path, ProcessContext& context);
