#include "base/LPath.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "base/LTrace.h"

// The first separator at or behind a place where a character begins; npos when there is none.
static size_t FindSeparator(std::string_view path, size_t from) {
    for (size_t at = from; at < path.size(); at += LIsLeadByte(path[at]) ? 2 : 1)
        if (LIsSeparator(path[at])) return at;
    return std::string_view::npos;
}

static size_t FindLastSeparator(std::string_view path) {
    size_t last = std::string_view::npos;
    for (size_t at = FindSeparator(path, 0); at != std::string_view::npos; at = FindSeparator(path, at + 1))
        last = at;
    return last;
}

bool LEndsInSeparator(std::string_view path) {
    return !path.empty() && FindLastSeparator(path) == path.size() - 1;
}

bool LIsFullPath(std::string_view path) {
    return path.starts_with("\\\\") || (path.size() > 2 && path[1] == ':' && path[2] == '\\');
}

bool LPath::Set(std::string_view text) {
    return Place(0, text);
}

bool LPath::Append(std::string_view text) {
    return Place(m_length, text);
}

bool LPath::Place(size_t at, std::string_view text) {
    // A zero byte would make the platform open another path than the one that was checked.
    const bool fits = text.size() < kPathSize - at && text.find('\0') == std::string_view::npos;
    if (!fits) LTrace("LPath::Place path too long", text);
    // The text may be a part of this very path.
    if (fits && !text.empty()) std::memmove(m_text + at, text.data(), text.size());
    m_length = fits ? at + text.size() : 0;
    m_text[m_length] = 0;
    return fits;
}

LPath LPath::Join(std::string_view folder, std::string_view name) {
    while (!folder.empty() && !name.empty() && LIsSeparator(name.front())) name.remove_prefix(1);
    LPath path(folder);
    if (path.Empty() && !folder.empty()) return path;
    if (!folder.empty() && !LEndsInSeparator(folder) && !path.Append("\\")) return path;
    path.Append(name);
    return path;
}

LPath LPath::WithExtension(std::string_view extension) const {
    LPath path(View().substr(0, m_length - LSplitPath(View()).extension.size()));
    if (!path.Empty()) path.Append(extension);
    return path;
}

LPath LPath::WithoutSeparator() const {
    std::string_view text = View();
    while (text.size() > 1 && LEndsInSeparator(text) && text[text.size() - 2] != ':') text.remove_suffix(1);
    return LPath(text);
}

LPath LPath::Format(const char* format, ...) {
    char text[kPathSize];
    va_list arguments;
    va_start(arguments, format);
    const int length = std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    if (length < 0 || static_cast<size_t>(length) >= sizeof text) {
        LTrace("LPath::Format path too long", format);
        return {};
    }
    return LPath(std::string_view(text, static_cast<size_t>(length)));
}

LPathParts LSplitPath(std::string_view path) {
    LPathParts parts;
    if (path.size() >= 2 && path[1] == ':') {
        parts.drive = path.substr(0, 2);
        path.remove_prefix(2);
    }
    const size_t separator = FindLastSeparator(path);
    if (separator != std::string_view::npos) {
        parts.folder = path.substr(0, separator + 1);
        path.remove_prefix(separator + 1);
    }
    const size_t dot = path.rfind('.');
    parts.name = path.substr(0, dot);
    if (dot != std::string_view::npos) parts.extension = path.substr(dot);
    return parts;
}

std::string_view LFolderOf(std::string_view path) {
    return path.substr(0, path.size() - LFileNameOf(path).size());
}

LPath LRootOf(std::string_view path) {
    const bool isShare = path.size() > 2 && LIsSeparator(path[0]) && LIsSeparator(path[1]);
    if (!isShare) return LPath::Join(LSplitPath(path).drive, "\\");
    const size_t server = FindSeparator(path, 2);
    const size_t share = server == std::string_view::npos ? server : FindSeparator(path, server + 1);
    LPath root(path.substr(0, share));
    if (!root.Empty()) root.Append("\\");
    return root;
}

LPath LFolderAbove(const LPath& path) {
    return LPath(LFolderOf(path.WithoutSeparator().View())).WithoutSeparator();
}

std::string LShownPath(std::string_view path) {
    constexpr size_t kLongest = 64, kHead = 20, kTail = 40;
    if (path.size() <= kLongest) return std::string(path);
    size_t head = 0, tail = 0;
    for (size_t at = 0; at + kTail < path.size(); at += LIsLeadByte(path[at]) ? 2 : 1) {
        if (at <= kHead) head = at;
        tail = at;
    }
    return std::string(path.substr(0, head)) + "..." + std::string(path.substr(tail));
}

std::string_view LFileNameOf(std::string_view path) {
    const LPathParts parts = LSplitPath(path);
    return path.substr(parts.drive.size() + parts.folder.size());
}
