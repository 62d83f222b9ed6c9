#pragma once

#include "base/LPath.h"
#include "store/CurrentUser.h"
#include "store/DictationFiles.h"

// Brings the files of a dictation from Sent back to Current. What another program keeps open is waited for,
// two seconds for each file. Where both folders have a file, neither is lost.
// Errors: false (traced) when a file had to stay in Sent; one that is not there is no error.
// Thread: the window thread.
namespace TakeBack {

// Audio whose place another recording has taken becomes a dictation of its own in Current, with the next
// number and "(2)" behind the name.
bool Audio(const CurrentUser& user, const DictationFiles& sent, const DictationFiles& current);
// A record that is in Current never left it, or is back already.
bool Record(const DictationFiles& sent, const DictationFiles& current);
// Notes go behind those that were written meanwhile.
bool Notes(const DictationFiles& sent, const DictationFiles& current);

}  // namespace TakeBack
