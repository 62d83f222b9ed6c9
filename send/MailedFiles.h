#pragma once

#include <cstdint>

#include "base/LPath.h"

// Deletes the converted files in a user's Sent folder that a mail program was given more than a day ago. It
// may read them after the dictation was sent, so nothing else deletes them. Dictations have other names and
// are not touched.
// Units:  now in seconds since 1970.
// Thread: any; at the start, as a file that is being made is young.
void RemoveMailedFiles(const LPath& sentFolder, int64_t now);
