#include "base/LProfile.h"

#include <algorithm>

#include "base/LFile.h"
#include "base/LLeftOver.h"
#include "base/LProfileText.h"
#include "base/LText.h"
#include "base/LThread.h"
#include "base/LTime.h"
#include "base/LTrace.h"

constexpr uint32_t kPollMs = 20;

LCriticalSection& LProfileLock() {
    static LCriticalSection lock;
    return lock;
}

LPath LProfile::CopyOf(const LPath& file) {
    LPath copy = file;
    if (!file.Empty()) copy.Append(LLeftOver::kProfile);
    return copy;
}

void LProfile::Recover(const LPath& file) {
    const LLock lock(LProfileLock());
    const LPath copy = CopyOf(file);
    if (!LFile::Exists(copy)) return;
    LTrace("LProfile::Recover change that was not finished", file.View());
    const bool isUsed = !LFile::Exists(file) && LFile(copy, LFile::Open::Read).Size() > 0;
    isUsed ? LFile::Move(copy, file) : LFile::Delete(copy);
}

std::string_view LTrimBlanks(std::string_view text) {
    while (!text.empty() && LIsBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && LIsBlank(text.back())) text.remove_suffix(1);
    return text;
}

std::string_view LProfileValue(std::string_view written) {
    std::string_view value = LTrimBlanks(written);
    const bool quoted =
        value.size() >= 2 && (value.front() == '"' || value.front() == '\'') && value.front() == value.back();
    if (quoted) value = value.substr(1, value.size() - 2);
    return value.substr(0, LProfile::kMaxText);
}

bool LIsProfileHeader(std::string_view line) {
    return LTrimBlanks(line).starts_with('[');
}

bool LIsProfileHeader(std::string_view line, std::string_view section) {
    if (!LIsProfileHeader(line)) return false;
    const std::string_view header = LTrimBlanks(line);
    return LEqualNoCase(LTrimBlanks(header.substr(1, header.find(']') - 1)), section);
}

static bool IsTakenAway(char c) {
    return LIsBlank(c) || c == '"' || c == '\'';
}

std::string LProfileSafe(std::string_view value) {
    size_t length = 0;
    while (length < value.size() &&
           (static_cast<unsigned char>(value[length]) >= 32 || value[length] == '\t'))
        ++length;
    value = value.substr(0, std::min(length, LProfile::kMaxText));
    if (value.empty() || (!IsTakenAway(value.front()) && !IsTakenAway(value.back())))
        return std::string(value);
    return '"' + std::string(value.substr(0, LProfile::kMaxText - 2)) + '"';
}

// The lines of the first section of this name in a text without zero bytes, each ended by a zero byte.
static std::string LinesOfSection(std::string_view text, std::string_view section) {
    std::string lines;
    bool isInside = false;
    while (!text.empty()) {
        std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
        if (line.ends_with('\r')) line.remove_suffix(1);
        if (LIsProfileHeader(line)) {
            if (isInside) break;
            isInside = LIsProfileHeader(line, section);
        } else if (isInside) {
            lines.append(line);
            lines.push_back('\0');
        }
    }
    return lines;
}

LProfileSection::LProfileSection(const LPath& file, std::string_view section, uint32_t waitMs) {
    std::vector<uint8_t> bytes;
    const uint32_t begun = LTickMs();
    for (;;) {
        {
            const LLock lock(LProfileLock());
            m_result = LFile::TryRead(file, kLongestProfile, bytes, 0);
        }
        if (m_result != LReadResult::Unreadable || LTickMs() - begun >= waitMs) break;
        LSleep(kPollMs);
    }
    // A blank to every reader: which line is a header must not depend on who looks.
    std::ranges::replace(bytes, uint8_t{0}, uint8_t{' '});
    m_lines = LinesOfSection({reinterpret_cast<const char*>(bytes.data()), bytes.size()}, section);
    if (m_result == LReadResult::Unreadable)
        LTrace("LProfileSection::LProfileSection unable to read file", file.View());
}

std::string LProfileSection::Read(std::string_view key, std::string_view defaultText) const {
    std::string_view rest = m_lines;
    while (!rest.empty()) {
        const std::string_view line = LBeforeZero(rest);
        rest.remove_prefix(line.size() < rest.size() ? line.size() + 1 : line.size());
        const size_t equals = line.find('=');
        if (equals == std::string_view::npos || !LEqualNoCase(LTrimBlanks(line.substr(0, equals)), key))
            continue;
        return std::string(LProfileValue(line.substr(equals + 1)));
    }
    return std::string(defaultText.substr(0, LProfile::kMaxText));
}
