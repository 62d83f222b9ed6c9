#include "base/LFile.h"
#include "base/LProfile.h"
#include "base/LProfileText.h"
#include "base/LText.h"
#include "base/LThread.h"

// The implementation for the native tests: a stand-in for the platform's private profiles, with the same
// rules.

namespace {

constexpr size_t kNone = SIZE_MAX;

// False when the file cannot be read; one that is absent has no lines.
bool ReadLines(const LPath& file, std::vector<std::string>& lines) {
    std::vector<uint8_t> bytes;
    if (LFile::TryRead(file, kLongestProfile, bytes) == LReadResult::Unreadable) return false;
    std::string line;
    for (uint8_t byte : bytes) {
        if (byte == 0) byte = ' ';  // as LProfileSection reads it
        if (byte != '\n') {
            line.push_back(static_cast<char>(byte));
            continue;
        }
        if (!line.empty() && line.back() == '\r') line.pop_back();
        lines.push_back(std::move(line));
        line.clear();
    }
    if (!line.empty()) lines.push_back(std::move(line));
    return true;
}

bool WriteLines(const LPath& file, const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines) text += line + "\r\n";
    const LPath beside = LProfile::CopyOf(file);
    LFile written(beside, LFile::Open::CreateNew);
    if (!written.WriteAll({reinterpret_cast<const uint8_t*>(text.data()), text.size()})) return false;
    written.Close();
    return LFile::Replace(beside, file);
}

// The lines of a section: first is the one after its header, kNone when there is no such section.
struct Range {
    size_t first = kNone;
    size_t end = kNone;
};

Range FindSection(const std::vector<std::string>& lines, std::string_view section) {
    Range range;
    for (size_t i = 0; i < lines.size(); ++i) {
        if (!LIsProfileHeader(lines[i])) continue;
        if (range.first != kNone) {
            range.end = i;
            return range;
        }
        if (LIsProfileHeader(lines[i], section)) range.first = i + 1;
    }
    if (range.first != kNone) range.end = lines.size();
    return range;
}

bool IsKey(std::string_view line, std::string_view key) {
    const size_t equals = line.find('=');
    return equals != std::string_view::npos && LEqualNoCase(LTrimBlanks(line.substr(0, equals)), key);
}

size_t FindKey(const std::vector<std::string>& lines, const Range& range, std::string_view key) {
    if (range.first == kNone) return kNone;
    for (size_t i = range.first; i < range.end; ++i) {
        if (IsKey(lines[i], key)) return i;
    }
    return kNone;
}

void SetLine(std::vector<std::string>& lines, std::string_view section, std::string_view key,
             std::string_view value) {
    Range range = FindSection(lines, section);
    if (range.first == kNone) {
        lines.push_back(std::string("[").append(section).append("]"));
        range = {lines.size(), lines.size()};
    }
    const std::string line = std::string(key) + "=" + LProfileSafe(value);
    if (const size_t at = FindKey(lines, range, key); at != kNone) {
        lines[at] = line;
    } else {
        // Blank lines stay between the sections.
        while (range.end > range.first && LTrimBlanks(lines[range.end - 1]).empty()) --range.end;
        lines.insert(lines.begin() + static_cast<ptrdiff_t>(range.end), line);
    }
}

}  // namespace

std::string LProfile::Read(const LPath& file, std::string_view section, std::string_view key,
                           std::string_view defaultText) {
    return LProfileSection(file, section).Read(key, defaultText);
}

bool LProfile::Write(const LPath& file, std::string_view section, std::string_view key,
                     std::string_view value) {
    const Value one{key, std::string(value)};
    return WriteValues(file, section, {&one, 1});
}

bool LProfile::WriteValues(const LPath& file, std::string_view section, std::span<const Value> values) {
    const LLock lock(LProfileLock());
    std::vector<std::string> lines;
    if (!ReadLines(file, lines)) return false;
    for (const Value& value : values) SetLine(lines, section, value.key, value.value);
    return WriteLines(file, lines);
}

bool LProfile::Delete(const LPath& file, std::string_view section, std::string_view key) {
    const LLock lock(LProfileLock());
    std::vector<std::string> lines;
    if (file.Empty() || !ReadLines(file, lines)) return false;
    const size_t at = FindKey(lines, FindSection(lines, section), key);
    if (at == kNone) return true;
    lines.erase(lines.begin() + static_cast<ptrdiff_t>(at));
    return WriteLines(file, lines);
}

void LProfile::Flush(const LPath&) {}
