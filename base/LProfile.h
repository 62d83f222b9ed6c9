#pragma once

#include <string>
#include <string_view>

#include "base/LFile.h"
#include "base/LPath.h"

// One key of one INI-style text file. The Windows build uses the platform's private-profile functions; the
// native test build has a stand-in with the same visible rules: section and key names without regard to case,
// blanks around a value dropped, one pair of quotation marks around a value dropped, values of at most 259
// characters.
// A change is made in a copy that then takes the file's place, so that the end of the program or of the power
// at any moment leaves the file as it was before or after.
// Errors: a read of what is missing yields the default; a failed write returns false. A file that is
//         there and cannot be read is not written either, since its other keys would be lost.
// Thread: any; the calls of one process wait for each other.
class LProfile {
public:
    static constexpr size_t kMaxText = 259;

    static std::string Read(const LPath& file, std::string_view section, std::string_view key,
                            std::string_view defaultText);
    static bool Write(const LPath& file, std::string_view section, std::string_view key,
                      std::string_view value);
    static bool Delete(const LPath& file, std::string_view section, std::string_view key);
    // Lets go of the platform's cache, so that the file itself may be moved or deleted.
    static void Flush(const LPath& file);

    // Where a change is made before it takes the file's place: "user.dat~" beside "user.dat". Empty when that
    // is too long for a path.
    static LPath CopyOf(const LPath& file);
    // Clears away the copy that an end of the program in the middle of a change left; it becomes the file
    // where there is none. For the program's start: nothing else may be writing the file but this process.
    static void Recover(const LPath& file);
};

// All keys of one section. The file is opened once and read as a whole, so that one that cannot be read is
// told from an empty one: the platform's calls answer with defaults for both.
class LProfileSection {
public:
    // waitMs: how long to wait for others who keep the file from being read.
    LProfileSection(const LPath& file, std::string_view section, uint32_t waitMs = 0);

    // Values: the file was read, whether it has the section or not.
    LReadResult Result() const { return m_result; }
    // The value as LProfile::Read would give it.
    std::string Read(std::string_view key, std::string_view defaultText) const;

private:
    LReadResult m_result;
    std::string m_lines;  // "key=value", each ended by a zero byte
};
