#include "app/window/NotesText.h"

#include <algorithm>
#include <cstdint>

namespace {

// Sum of the squares of the paragraphs' lengths, in bytes: one of 10,000, or 65,000 bytes in paragraphs of
// 1,500. It takes some 0.2 to 0.4 s.
constexpr uint64_t kMostLayOutWork = 100'000'000;
constexpr size_t kShownLineBytes = 400;

bool IsBreak(char c) {
    return c == '\r' || c == '\n';
}

bool IsBlank(char c) {
    return c == ' ' || c == '\t' || IsBreak(c);
}

// The one span in which a text differs from an earlier one, of whole words: two changes of one word or number
// must not become a third that nobody wrote.
struct Change {
    size_t begin = 0;  // in the earlier text
    size_t end = 0;
    std::string_view text;  // in place of it
};

Change FindChange(std::string_view earlier, std::string_view now) {
    size_t begin = SharedBytes(earlier, now);
    const auto most = static_cast<ptrdiff_t>(std::min(earlier.size(), now.size()) - begin);
    const auto tail = std::mismatch(earlier.rbegin(), earlier.rbegin() + most, now.rbegin());
    auto same = static_cast<size_t>(tail.first - earlier.rbegin());
    const auto isInWord = [](size_t at, std::string_view text) {
        return at > 0 && at < text.size() && !IsBlank(text[at - 1]) && !IsBlank(text[at]);
    };
    while (isInWord(begin, earlier) || isInWord(begin, now)) --begin;
    while (isInWord(earlier.size() - same, earlier) || isInWord(now.size() - same, now)) --same;
    return {begin, earlier.size() - same, now.substr(begin, now.size() - same - begin)};
}

std::string JoinParts(std::string_view ours, std::string_view theirs) {
    if (ours.starts_with(theirs)) return std::string(ours);
    if (theirs.starts_with(ours)) return std::string(theirs);
    const bool isParted = IsBreak(ours.back()) || IsBreak(theirs.front());
    return std::string(ours) + (isParted ? "" : "\r\n") + std::string(theirs);
}

}  // namespace

size_t SharedBytes(std::string_view one, std::string_view other) {
    const auto differ = std::mismatch(one.begin(), one.end(), other.begin(), other.end());
    return static_cast<size_t>(differ.first - one.begin());
}

std::string MergeNotes(std::string_view earlier, std::string_view theirs, std::string_view ours) {
    if (theirs.empty()) return std::string(ours);
    Change first = FindChange(earlier, ours);
    Change second = FindChange(earlier, theirs);
    const bool isSamePlace = first.begin == second.begin && first.end == second.end;
    if (second.end <= first.begin && !isSamePlace) std::swap(first, second);
    if (first.end <= second.begin && !isSamePlace)
        return std::string(earlier.substr(0, first.begin))
            .append(first.text)
            .append(earlier.substr(first.end, second.begin - first.end))
            .append(second.text)
            .append(earlier.substr(second.end));
    // Both changed the same passage: each version of it is kept.
    const size_t begin = std::min(first.begin, second.begin);
    const size_t kept = earlier.size() - std::max(first.end, second.end);
    const auto passage = [&](std::string_view text) {
        return text.substr(begin, text.size() - kept - begin);
    };
    return std::string(earlier.substr(0, begin)) + JoinParts(passage(ours), passage(theirs)) +
           std::string(earlier.substr(earlier.size() - kept));
}

bool IsLaidOutQuickly(std::string_view text) {
    uint64_t work = 0;
    while (!text.empty() && work <= kMostLayOutWork) {
        const size_t length = std::min(text.find('\n'), text.size() - 1) + 1;
        work += uint64_t{length} * length;
        text.remove_prefix(length);
    }
    return work <= kMostLayOutWork;
}

std::string BreakLongLines(std::string_view text) {
    std::string broken;
    while (!text.empty()) {
        size_t length = std::min(text.find('\n'), text.size() - 1) + 1;
        const bool isTooLong = length > kShownLineBytes;
        if (isTooLong) {
            const size_t blank = text.substr(0, kShownLineBytes).rfind(' ');
            length = blank == text.npos ? kShownLineBytes : blank + 1;
        }
        broken.append(text.substr(0, length)).append(isTooLong ? "\r\n" : "");
        text.remove_prefix(length);
    }
    return broken;
}
