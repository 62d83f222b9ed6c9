#pragma once

#include <string_view>

// Whether a text can be the tag around the answer to a prompted field: a letter or "_", then letters, digits,
// "_", "-" or ".". Anything else could not be found again in the notes, or by the typist's program.
bool IsPlainTag(std::string_view tag);
