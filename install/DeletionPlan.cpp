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
    const std::string added =
        (isCut ? "\r\n" : "") + std::string(end == 0 ? "[rename]\r\n" : "") + line + "\r\n";
    return text.insert(end == 0 ? text.size() : end, added);
}

// A line holds one command there, and a loop is one.
static std::string FolderLoop(std::span<const DeletedPath> paths) {
    std::string list;
    for (const DeletedPath& path : paths) {
        if (!path.isFolder || path.path.View().find_first_of(" ()") != std::string_view::npos) return {};
        list += (list.empty() ? "" : " ") + std::string(path.path.View());
    }
    return " for %d in (" + list + ") do rd %d";
}

static std::string Commands(std::span<const DeletedPath> paths) {
    std::string commands;
    for (const DeletedPath& path : paths)
        commands += LFormat("%s %s \"%s\"", commands.empty() ? "" : " &", path.isFolder ? "rd" : "del",
                            path.path.c_str());
    return commands;
}

std::string DeletionCommand(const LPath& interpreter, std::span<const DeletedPath> paths) {
    const auto isVariable = [](const DeletedPath& path) {
        return path.path.View().find('%') != std::string_view::npos;
    };
    const bool isOld = LEqualNoCase(LFileNameOf(interpreter.View()), "command.com");
    const std::string commands = isOld ? FolderLoop(paths) : Commands(paths);
    const std::string line = '"' + std::string(interpreter.View()) + "\" /c" + commands;
    const bool isRefused = interpreter.Empty() || commands.empty() || std::ranges::any_of(paths, isVariable);
    return isRefused || line.size() > kLongestCommand ? std::string() : line;
}
