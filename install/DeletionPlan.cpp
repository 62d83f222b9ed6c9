#include "install/DeletionPlan.h"

#include <algorithm>

#include "base/LProfileText.h"
#include "base/LText.h"

static constexpr size_t kLongestCommand = 259;  // that the platform starts from its registry

// The line that begins at a place, with its line break.
static std::string_view LineAt(std::string_view text, size_t begin) {
    return text.substr(begin, std::min(text.find('\n', begin), text.size() - 1) + 1 - begin);
}

static std::string_view WithoutBreak(std::string_view line) {
    while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) line.remove_suffix(1);
    return line;
}

std::string WithDeletion(std::string_view wininit, std::string_view shortPath) {
    const std::string line = "NUL=" + std::string(shortPath);
    std::string text(wininit);
    size_t end = 0;  // behind the last line of the section; 0: there is none
    bool isInside = false;
    for (size_t begin = 0; begin < wininit.size();) {
        const size_t next = begin + LineAt(wininit, begin).size();
        const std::string_view found = WithoutBreak(LineAt(wininit, begin));
        if (LIsProfileHeader(found)) isInside = end == 0 && LIsProfileHeader(found, "rename");
        if (isInside && LEqualNoCase(LTrimBlanks(found), line)) return text;
        if (isInside && !LTrimBlanks(found).empty()) end = next;
        begin = next;
    }
    const bool isCut = (end == 0 || end == text.size()) && !text.empty() && text.back() != '\n';
    return text.insert(end == 0 ? text.size() : end, LFormat("%s%s%s\r\n", isCut ? "\r\n" : "",
                                                             end == 0 ? "[rename]\r\n" : "", line.c_str()));
}

std::string DeletionCommand(const LPath& interpreter, std::span<const DeletedPath> paths) {
    // Its lines hold one command, and a loop is one.
    const bool isOld = LEqualNoCase(LFileNameOf(interpreter.View()), "command.com");
    std::string line = LFormat("\"%s\" /c%s", interpreter.c_str(), isOld ? " for %d in (" : "");
    for (const DeletedPath& path : paths) {
        const bool isName = path.path.View().find_first_of(isOld ? "% ()" : "%") == std::string_view::npos;
        if (!isName || (isOld && !path.isFolder)) return {};
        line += isOld ? LFormat(" %s", path.path.c_str())
                      : LFormat("%s %s \"%s\"", &path == paths.data() ? "" : " &",
                                path.isFolder ? "rd" : "del", path.path.c_str());
    }
    if (isOld) line += ") do rd %d";
    return interpreter.Empty() || line.size() > kLongestCommand ? std::string() : line;
}

bool LiesIn(std::string_view path, std::span<const LPath> spellings) {
    return std::ranges::any_of(spellings, [&](const LPath& folder) {
        const size_t length = folder.View().size();
        return length > 0 && LEqualNoCase(path.substr(0, length), folder.View()) &&
               (path.size() == length || LIsSeparator(path[length]));
    });
}

std::string WithoutDeletions(std::string_view wininit, std::span<const LPath> spellings) {
    constexpr std::string_view kKey = "NUL=";
    std::string text;
    bool isInside = false;
    for (size_t begin = 0; begin < wininit.size(); begin += LineAt(wininit, begin).size()) {
        const std::string_view line = LTrimBlanks(WithoutBreak(LineAt(wininit, begin)));
        if (LIsProfileHeader(line)) isInside = LIsProfileHeader(line, "rename");
        const bool isDeletion = isInside && LEqualNoCase(line.substr(0, kKey.size()), kKey);
        if (!isDeletion || !LiesIn(line.substr(kKey.size()), spellings)) text += LineAt(wininit, begin);
    }
    return text;
}

bool DeletesIn(std::string_view command, std::span<const LPath> spellings) {
    for (size_t at = command.find(" /c "); at < command.size(); ++at) {
        if (command[at] != '"' && command[at] != ' ') continue;
        const std::string_view rest = command.substr(at + 1);
        if (LiesIn(rest.substr(0, rest.find_first_of(command[at] == '"' ? "\"" : " )")), spellings))
            return true;
    }
    return false;
}

// The path as programs write it; empty for one that is none of a drive or share.
static std::wstring UsualPath(std::wstring_view path) {
    constexpr std::wstring_view kCore = L"\\??\\", kShare = L"UNC\\";
    if (!path.starts_with(kCore)) return {};
    path.remove_prefix(kCore.size());
    if (!path.starts_with(kShare)) return std::wstring(path);
    return L"\\\\" + std::wstring(path.substr(kShare.size()));
}

std::wstring WithoutDeletions(std::wstring_view pairs,
                              const std::function<bool(std::wstring_view path)>& liesInFolder) {
    std::wstring left;
    while (!pairs.empty()) {
        const size_t source = pairs.find(L'\0');
        const size_t target = source == pairs.npos ? source : pairs.find(L'\0', source + 1);
        if (source == 0 || target == pairs.npos) break;
        const bool isDeletion = target == source + 1;
        if (!isDeletion || !liesInFolder(UsualPath(pairs.substr(0, source))))
            left += pairs.substr(0, target + 1);
        pairs.remove_prefix(target + 1);
    }
    return left.append(pairs);
}
