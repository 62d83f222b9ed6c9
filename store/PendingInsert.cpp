#include "store/PendingInsert.h"

#include <algorithm>
#include <charconv>

#include "base/LFile.h"
#include "base/LLeftOver.h"
#include "base/LText.h"
#include "base/LTrace.h"
#include "store/DictationStore.h"

// The file holds two lines: the path of the recording, and the frame. It is written whole and flushed, since
// it must be on the disk before the recording is.

namespace {

constexpr size_t kMostBytes = 1024;

// Takes the next line off the text.
std::string_view TakeLine(std::string_view& text) {
    const size_t end = text.find("\r\n");
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 2);
    return line;
}

bool ReadFrames(std::string_view line, int32_t& frames) {
    const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), frames);
    return error == std::errc() && end == line.data() + line.size() && frames >= 0;
}

}  // namespace

LPath PendingInsert::NoteOf(const DictationFiles& files) {
    return files.record.WithExtension(LLeftOver::kInsert);
}

PendingInsert::Result PendingInsert::Read(const DictationFiles& files, PendingInsert& pending) {
    LFile note;
    const LReadResult opened = LFile::OpenToRead(NoteOf(files), note);
    if (opened != LReadResult::Values) return opened == LReadResult::Absent ? Result::Absent : Result::Held;
    std::vector<uint8_t> bytes(kMostBytes + 1);
    bytes.resize(note.Read(bytes));
    if (static_cast<int64_t>(bytes.size()) < std::min<int64_t>(note.Size(), kMostBytes)) return Result::Held;
    std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    const std::string_view path = TakeLine(text);
    PendingInsert found;
    found.recording = LPath(path);
    const bool isWhole = bytes.size() <= kMostBytes && path.find('\0') == std::string_view::npos &&
                         !found.recording.Empty() && ReadFrames(TakeLine(text), found.atFrame) &&
                         text.empty();
    if (!isWhole) {
        LTrace("PendingInsert::Read damaged", files.record.View());
        return Result::Damaged;
    }
    pending = found;
    return Result::Values;
}

bool PendingInsert::Write(const DictationFiles& files) const {
    const std::string text = LFormat("%s\r\n%ld\r\n", recording.c_str(), static_cast<long>(atFrame));
    const LPath note = NoteOf(files);
    if (LFile::WriteWhole(note, note.WithExtension(LLeftOver::kInsertBeside),
                          {reinterpret_cast<const uint8_t*>(text.data()), text.size()}))
        return true;
    LTrace("PendingInsert::Write unable to write", note.View());
    return false;
}

bool PendingInsert::Forget(const DictationFiles& files) {
    const LPath note = NoteOf(files);
    if (LFile::Delete(note, kMoveWaitMs) || LFile::IsAbsent(note)) return true;
    LTrace("PendingInsert::Forget unable to delete", note.View());
    return false;
}

LPath PendingInsert::SetAside(const DictationFiles& files) {
    return ::SetAside(NoteOf(files));
}

std::vector<DictationFiles> PendingInsert::List(const LPath& folder) {
    std::vector<DictationFiles> found;
    LListFolder(folder, "*.*", [&](const LFolderEntry& entry) {
        const LPath path = LPath::Join(folder.View(), entry.name);
        if (!entry.isFolder && LEqualNoCase(LSplitPath(entry.name).extension, LLeftOver::kInsert))
            found.push_back(DictationFiles::OfPath(path));
        return true;
    });
    return found;
}
