#pragma once

#include <cstdint>

#include "base/LPath.h"
#include "store/CurrentUser.h"
#include "store/QueueAnswer.h"

// Brings back whatever the end of the program at a wrong moment has scattered, so that every recording on
// disk is listed, played and sent: a move to Sent that was not finished, audio without its record, a record
// without its audio, and every file that was being written beside the one it replaces. Only complete notes
// overwrite anything, the older ones. Call it after SelectUser, before the dictations are listed and before
// the send thread starts. isQueued is asked whether the send queue holds the path of an audio file in Sent.
// Only file names are looked at where all is well, so a thousand dictations cost a few folder listings.
// Units:  now in seconds since 1970. Thread: the window thread.
void RecoverDictations(const CurrentUser& user, const AskQueue& isQueued, int64_t now);
