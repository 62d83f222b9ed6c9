#pragma once

#include <string>
#include <string_view>

class LCriticalSection;

// The rules of profile files that both implementations of LProfile need.

// Held while a file is read or changed: a reader would keep the changed copy from taking the file's place.
LCriticalSection& LProfileLock();

// Without the blanks around it.
std::string_view LTrimBlanks(std::string_view text);

// Whether a line begins a section, and whether it begins the one of this name.
bool LIsProfileHeader(std::string_view line);
bool LIsProfileHeader(std::string_view line, std::string_view section);

// Bytes of a file that is taken for a settings file. Ours have a few hundred; a larger one would be walked through at
// each start, and Windows 95 itself reads no more than 64 KB.
inline constexpr size_t kLongestProfile = 256u << 10;

// A value as a reader gets it: without blanks and one pair of quotation marks around it, cut to 259
// characters.
std::string_view LProfileValue(std::string_view written);

// A value as it is to be written: it ends before the first line break or other control byte, so no text that
// a user enters can become a line of its own, and after at most 259 characters. What a reader would take away
// from its ends is kept by quotation marks around it.
std::string LProfileSafe(std::string_view value);
