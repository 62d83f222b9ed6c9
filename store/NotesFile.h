#pragma once

#include <string>
#include <string_view>

#include "base/LPath.h"

// The notes of a dictation: plain text in the user's code page that ends at its first zero byte. The file
// ends in that zero byte, which the readers on the typist's side expect.
// Errors: false is traced. Thread: any, one at a time for each file.
namespace NotesFile {

// Bound of a size that comes from a file: a failed allocation would end the program.
constexpr size_t kMaxBytes = 16u << 20;

// The beginning of the notes for one line of the list: the first 127 bytes, each byte below 32 replaced by a
// blank.
std::string Preview(const LPath& notes);

// The whole text; empty for a missing file. False when the file cannot be read or is longer than 16 MB: the
// notes must then not be written back, because that would replace text that was never shown.
bool Read(const LPath& notes, std::string& text);

// Replaces the contents by the text and one zero byte. On failure (false) the old notes are unchanged.
bool Write(const LPath& notes, std::string_view text);

// Appends the text of another file as a new paragraph, unless the notes end with it already, and deletes that
// file. False when a file cannot be read, written or deleted; no text is lost in any case.
bool Append(const LPath& notes, const LPath& other);

// Finishes a Write that was cut off, given the path of its unfinished file: a complete text replaces the
// older notes, an incomplete one is deleted.
void RecoverUnfinished(const LPath& unfinished);

}  // namespace NotesFile
