#pragma once

#include <string>
#include <string_view>

constexpr size_t kPathSize = 260;  // bytes of a path buffer, the terminating zero included

// A path in a fixed buffer of 260 bytes, the limit of the platform's calls. A text that does not fit is
// refused with a trace line and leaves the path empty. No file opens under an empty path, so a refused path
// fails where it is used; a path that was cut to fit would name another file.
// Units:  bytes in the user's code page.
class LPath {
public:
    LPath() = default;
    explicit LPath(std::string_view text) { Set(text); }

    bool Set(std::string_view text);
    bool Append(std::string_view text);

    const char* c_str() const { return m_text; }
    std::string_view View() const { return {m_text, m_length}; }
    bool Empty() const { return m_length == 0; }
    bool operator==(const LPath& other) const { return View() == other.View(); }

    // Folder and name with exactly one separator between them; an empty folder gives the name alone.
    static LPath Join(std::string_view folder, std::string_view name);

    // The same path with another extension (".wav"), or with one added when it has none.
    LPath WithExtension(std::string_view extension) const;

    // Without the separators at its end, but for a root's: Windows 95 makes no folder whose name ends in one.
    LPath WithoutSeparator() const;

    // printf into a path, refused when longer than 259 characters.
    static LPath Format(const char* format, ...) __attribute__((format(printf, 1, 2)));

private:
    bool Place(size_t at, std::string_view text);

    char m_text[kPathSize] = {};
    size_t m_length = 0;
};

// A path taken apart; the pieces put together again are the path. Both separators count.
//   "C:\a\b.wav": drive "C:", folder "\a\", name "b", extension ".wav"
struct LPathParts {
    std::string_view drive;
    std::string_view folder;
    std::string_view name;
    std::string_view extension;
};
LPathParts LSplitPath(std::string_view path);

// Drive and folder of a path, with the trailing separator.
std::string_view LFolderOf(std::string_view path);

// The root of the drive or share of a path: "C:\" or "\\server\share\", and "\" where it names neither.
LPath LRootOf(std::string_view path);

// The folder in which a file or folder lies, without a separator at its end.
LPath LFolderAbove(const LPath& path);

// A path for a message box, which would otherwise be as wide: without its middle where it is long.
std::string LShownPath(std::string_view path);

// Name and extension of a path, without its folder.
std::string_view LFileNameOf(std::string_view path);

// Whether a path ends in a separator.
bool LEndsInSeparator(std::string_view path);

// Whether a path names its drive or its share from the root on: "C:\..." or "\\...".
bool LIsFullPath(std::string_view path);

// Whether this byte begins a character of two bytes in the user's code page. The second byte may be 0x5C,
// which alone is a backslash, so separators are searched for character by character.
bool LIsLeadByte(char c);

constexpr bool LIsSeparator(char c) {
    return c == '\\' || c == '/';
}
