#pragma once

#include <string>
#include <string_view>

class LCriticalSection;

// The rules of profile files that the implementations of LProfile share.

// The lock for reading and changing a file: a reader would keep the changed copy from taking the file's
// place.
LCriticalSection& LProfileLock();

// The text without blanks and tabs around it.
std::string_view LTrimBlanks(std::string_view text);

// Whether a line begins a section, and whether it begins the one of this name.
bool LIsProfileHeader(std::string_view line);
bool LIsProfileHeader(std::string_view line, std::string_view section);

// The longest file, in bytes, that is read as a settings file. Ours have a few hundred bytes; a larger one
// would cost time at each start, and Windows 95 itself reads no more than 64 KB.
inline constexpr size_t kLongestProfile = 256u << 10;

// A value as a reader gets it: without blanks and one pair of quotation marks around it, cut to 259
// characters.
std::string_view LProfileValue(std::string_view written);

// A value in the form in which it is written. It ends before the first line break or other control byte, so
// no text that a user enters can become a line of its own, and after at most 259 characters. Blanks or
// quotation marks at its ends, which a reader would drop, are kept by quotation marks around it.
std::string LProfileSafe(std::string_view value);
