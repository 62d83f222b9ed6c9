#pragma once

#include <cstdint>

#include "base/LPath.h"
#include "store/CurrentUser.h"
#include "store/QueueAnswer.h"

// Repairs the user's folders after an end of the program at a wrong moment, so that every recording on disk
// is listed, played and sent. It treats a move to Sent that was not finished, a dictation that was being
// loaded, audio without its record, a record without its audio, and files that were being written beside the
// ones they replace. Nothing is overwritten, except older notes by complete newer ones.
// Call it after SelectUser, before the dictations are listed and before the send thread starts. Where nothing
// is amiss it only lists folders, so a thousand dictations cost little.
// isQueued answers whether the send queue holds the path of an audio file in Sent.
// Units:  now in seconds since 1970.
// Thread: the window thread.
void RecoverDictations(const CurrentUser& user, const AskQueue& isQueued, int64_t now);
