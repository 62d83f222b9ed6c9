#include "send/UntoldErrors.h"

#include <algorithm>
#include <string>
#include <utility>

#include "base/LFile.h"
#include "base/LLeftOver.h"
#include "base/LText.h"
#include "base/LTrace.h"

// The file (docs/file-formats.md) is replaced as a whole at each change: errors are rare, and it is small.

static constexpr size_t kMostErrors = 50;
static constexpr int32_t kMostCounted = 1000000;
static constexpr size_t kLongestText = 259;
static constexpr size_t kLongestName = 100;  // of which a box shows 80 characters
static constexpr size_t kMostBytes = size_t{32} << 10;
static constexpr int kMostBreaks = 6;
static constexpr char kUnnamed[] =
    "More dictations could not be sent.\n\nPlease look through the sent dictations and send them again.";

// Takes the text before the next zero byte off the rest.
static std::string TakeField(std::string_view& rest) {
    std::string field(LBeforeZero(rest));
    rest.remove_prefix(std::min(field.size() + 1, rest.size()));
    return field;
}

void UntoldErrors::KeepIn(const LPath& file) {
    LFile stored;
    const LReadResult result = LFile::OpenToRead(file, stored);
    if (result == LReadResult::Unreadable) {
        LTrace("UntoldErrors::KeepIn unable to read file", file.View());
        return;
    }
    const int64_t size = stored.IsOpen() ? std::max<int64_t>(stored.Size(), 0) : 0;
    std::string text(std::min(static_cast<size_t>(size), kMostBytes), '\0');
    if (stored.Read({reinterpret_cast<uint8_t*>(text.data()), text.size()}) != text.size()) {
        LTrace("UntoldErrors::KeepIn unable to read file", file.View());
        return;
    }
    m_file = file;
    Parse(text);
}

void UntoldErrors::Parse(std::string_view text) {
    const int32_t more = LParseInt(TakeField(text));
    while (!text.empty() && m_errors.size() < kMostErrors) {
        SendError error;
        for (std::string* field : {&error.text, &error.dictation, &error.typist}) *field = TakeField(text);
        int breaks = 0;  // of lines: more would push the buttons off the screen
        for (char& c : error.text)
            if (static_cast<unsigned char>(c) < ' ' && (c != '\n' || ++breaks > kMostBreaks)) c = ' ';
        Take(std::move(error));
    }
    m_more = m_errors.empty() ? 0 : std::clamp(more, 0, kMostCounted);
}

bool UntoldErrors::Add(SendError error) {
    if (!error) return false;
    const bool isKept = Take(std::move(error));
    if (!isKept) ++m_more;
    Save();
    return isKept;
}

bool UntoldErrors::Take(SendError error) {
    if (!error) return true;
    error.text.resize(std::min(error.text.size(), kLongestText));
    for (std::string* name : {&error.dictation, &error.typist})
        name->resize(std::min(name->size(), kLongestName));
    const auto isTheSame = [&](const SendError& other) {
        return other.text == error.text && other.dictation == error.dictation;
    };
    // One cause, one text: an error that concerns no single dictation may come up again and again.
    if (error.dictation.empty() && std::ranges::any_of(m_errors, isTheSame)) return true;
    if (m_errors.size() >= kMostErrors) return false;
    m_errors.push_back(std::move(error));
    return true;
}

SendError UntoldErrors::All() const {
    if (m_errors.empty()) return {};
    SendError all = m_errors.front();
    all.others.assign(m_errors.begin() + 1, m_errors.end());
    all.more = m_more;
    return all;
}

void UntoldErrors::Forget(const SendError& told) {
    if (!told) return;
    const size_t count = std::min(1 + told.others.size(), m_errors.size());
    m_errors.erase(m_errors.begin(), m_errors.begin() + static_cast<ptrdiff_t>(count));
    m_more = std::max(0, m_more - told.more);
    if (m_errors.empty() && std::exchange(m_more, 0) > 0) Take({kUnnamed, {}, {}});
    Save();
}

void UntoldErrors::Save() const {
    if (m_file.Empty()) return;
    if (m_errors.empty()) {
        if (!LFile::IsAbsent(m_file) && !LFile::Delete(m_file))
            LTrace("UntoldErrors::Save unable to delete file", m_file.View());
        return;
    }
    std::string text = std::to_string(m_more) + '\0';
    for (const SendError& error : m_errors)
        for (const std::string* field : {&error.text, &error.dictation, &error.typist})
            text.append(LBeforeZero(*field)).push_back('\0');
    if (!LFile::WriteWhole(m_file, m_file.WithExtension(LLeftOver::kUntold),
                           {reinterpret_cast<const uint8_t*>(text.data()), text.size()}))
        LTrace("UntoldErrors::Save unable to write file", m_file.View());
}
