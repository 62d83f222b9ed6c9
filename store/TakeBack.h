#pragma once

#include "base/LPath.h"
#include "store/CurrentUser.h"
#include "store/DictationFiles.h"

// Moves the files of a dictation from Sent back to Current, waiting two seconds for each file that another
// program holds. Where both folders have a file, both are kept.
// Errors: false (traced) when a file had to stay in Sent. A missing file is no error.
// Thread: the window thread.
namespace TakeBack {

// Audio. If Current has audio of its own, the one from Sent becomes a new dictation in Current, with the next
// number and "(2)" behind the name.
bool Audio(const CurrentUser& user, const DictationFiles& sent, const DictationFiles& current);
// The record. One that exists in Current is left alone: it never moved, or is back already.
bool Record(const DictationFiles& sent, const DictationFiles& current);
// The notes, appended to those that were written in Current meanwhile.
bool Notes(const DictationFiles& sent, const DictationFiles& current);

}  // namespace TakeBack
