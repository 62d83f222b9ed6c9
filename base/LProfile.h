#pragma once

#include <span>
#include <string>
#include <string_view>

#include "base/LFile.h"
#include "base/LPath.h"

// One key of one INI-style text file. The Windows build uses the platform's private-profile functions. The
// native test build has a stand-in with the same visible rules: section and key names without regard to case,
// blanks around a value dropped, one pair of quotation marks around a value dropped, values of at most 259
// characters.
// A change is made in a copy that then takes the file's place. An end of the program or of the power at any
// moment leaves the file as it was before or after.
// Errors: reading a missing key or file yields the default; a failed write returns false. A file that exists
//         and cannot be read is not written either, since its other keys would be lost.
// Thread: any; the calls of one process wait for each other.
class LProfile {
public:
    static constexpr size_t kMaxText = 259;

    static std::string Read(const LPath& file, std::string_view section, std::string_view key,
                            std::string_view defaultText);
    static bool Write(const LPath& file, std::string_view section, std::string_view key,
                      std::string_view value);
    // Several keys of one section in one change, which costs as much as that of one key.
    struct Value {
        std::string_view key;
        std::string value;
    };
    static bool WriteValues(const LPath& file, std::string_view section, std::span<const Value> values);
    static bool Delete(const LPath& file, std::string_view section, std::string_view key);
    // Empties the platform's cache of the file, so that the file itself may be moved or deleted.
    static void Flush(const LPath& file);

    // The copy in which a change is made: "user.dat~" beside "user.dat". Empty when that is too long for a
    // path.
    static LPath CopyOf(const LPath& file);
    // Clears away the copy that is left when the program ends in the middle of a change. It becomes the file
    // where there is none. For the program's start: no other process may be writing the file.
    static void Recover(const LPath& file);
};

// All keys of one section, read from the file at once when it is built. Unlike the platform's calls, which
// answer with defaults in both cases, it tells a file that cannot be read from an empty one.
// Errors: Result(); Unreadable is traced, and every key then has its default.
// Thread: one at a time.
class LProfileSection {
public:
    // waitMs: the longest wait for others that keep the file from being read.
    LProfileSection(const LPath& file, std::string_view section, uint32_t waitMs = 0);

    // Values: the file was read, whether it has the section or not.
    LReadResult Result() const { return m_result; }
    // The value by the rules of LProfile::Read.
    std::string Read(std::string_view key, std::string_view defaultText) const;

private:
    LReadResult m_result;
    std::string m_lines;  // "key=value", each ended by a zero byte
};
