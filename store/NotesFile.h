#pragma once

#include <string>
#include <string_view>

#include "base/LPath.h"

// The notes of a dictation: plain text that ends at its first zero byte.
namespace NotesFile {

constexpr size_t kMaxBytes = 16u << 20;

// The beginning for one line of a list: from the first 127 bytes, with each byte below 32 as a blank.
std::string Preview(const LPath& notes);

// The whole text; a missing file is an empty one. False when the file cannot be read or is longer than 16 MB:
// the notes must then not be written back, since that would replace what was never shown.
bool Read(const LPath& notes, std::string& text);

// Replaces the file by the text and one zero byte. On failure (false) the old notes are as they were.
bool Write(const LPath& notes, std::string_view text);

// Adds another file's text behind the notes (a new paragraph), unless they are the same, and deletes that
// file. False when one of them cannot be read or written; both are then as they were.
bool Append(const LPath& notes, const LPath& other);

// Ends a Write that was cut off, given the path of what it left beside the notes: a complete text takes the
// place of the older notes, half a text goes.
void RecoverUnfinished(const LPath& unfinished);

}  // namespace NotesFile
