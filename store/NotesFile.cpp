#include "store/NotesFile.h"

#include "base/LFile.h"
#include "base/LLeftOver.h"
#include "base/LText.h"
#include "base/LTrace.h"

// Notes are written as a whole under another name and then swapped in (LFile::WriteWhole), so the old notes
// exist until the new ones are complete. The zero byte at the end, which the format demands, is also the sign
// of completeness for RecoverUnfinished.

namespace NotesFile {

constexpr size_t kPreviewBytes = 127;

static std::string_view AsText(std::span<const uint8_t> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

std::string Preview(const LPath& notes) {
    uint8_t bytes[kPreviewBytes];
    LFile file(notes, LFile::Open::Read);
    const size_t count = file.Read(bytes);
    return LShownText(LBeforeZero(AsText(std::span(bytes).first(count))));
}

static LReadResult TryRead(const LPath& notes, std::string& text) {
    std::vector<uint8_t> bytes;
    const LReadResult result = LFile::TryRead(notes, kMaxBytes, bytes, 0);
    if (result == LReadResult::Unreadable) LTrace("NotesFile::Read unable to read file", notes.View());
    text = LBeforeZero(AsText(bytes));
    return result;
}

bool Read(const LPath& notes, std::string& text) {
    return TryRead(notes, text) != LReadResult::Unreadable;
}

bool Write(const LPath& notes, std::string_view text) {
    std::vector<uint8_t> bytes(text.begin(), text.end());
    bytes.push_back(0);
    if (LFile::WriteWhole(notes, notes.WithExtension(LLeftOver::kNotes), bytes)) return true;
    LTrace("NotesFile::Write unable to write file", notes.View());
    return false;
}

bool Append(const LPath& notes, const LPath& other) {
    std::string text;
    std::string added;
    // An unread file must not be deleted below.
    if (!Read(notes, text) || TryRead(other, added) != LReadResult::Values) return false;
    const bool isWritten = text.ends_with(added) || Write(notes, text + "\r\n\r\n" + added);
    return isWritten && LFile::Delete(other, kMoveWaitMs);
}

void RecoverUnfinished(const LPath& unfinished) {
    const LPath notes = unfinished.WithExtension(".txt");
    std::vector<uint8_t> bytes;
    if (LFile::TryRead(unfinished, kMaxBytes, bytes) != LReadResult::Values) return;
    // The zero byte is written last, so a text that ends in one is complete.
    const bool complete = !bytes.empty() && bytes.back() == 0;
    if (!complete) {
        LFile::Delete(unfinished);
    } else if (!LFile::Replace(unfinished, notes)) {
        LTrace("NotesFile::RecoverUnfinished unable to replace file", notes.View());
    }
}

}  // namespace NotesFile
