#include "install/DeletionPlan.h"

#include <algorithm>

#include "base/LProfileText.h"
#include "base/LText.h"

static constexpr size_t kLongestCommand = 259;  // that the platform starts from its registry

std::string WithDeletion(std::string_view wininit, std::string_view shortPath) {
    const std::string line = "NUL=" + std::string(shortPath);
    std::string text(wininit);
    size_t end = 0;  // behind the last line of the section; 0: there is none
    bool isInside = false;
    for (size_t begin = 0; begin < wininit.size();) {
        const size_t next = std::min(wininit.find('\n', begin), wininit.size() - 1) + 1;
        std::string_view found = wininit.substr(begin, next - begin);
        while (!found.empty() && (found.back() == '\n' || found.back() == '\r')) found.remove_suffix(1);
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
