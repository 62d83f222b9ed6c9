#include "app/window/UnsavedNotes.h"

#include <algorithm>

#include "app/window/NotesText.h"
#include "base/LFile.h"
#include "store/DictationFiles.h"
#include "store/NotesFile.h"

// A file that cannot be read is not written: another program may have put new text into it.
static std::optional<std::string> TryWrite(const LPath& notes, std::string_view earlier,
                                           std::string_view text) {
    std::string inFile;
    if (!NotesFile::Read(notes, inFile)) return std::nullopt;
    std::string merged = MergeNotes(earlier, inFile, text);
    if (!NotesFile::Write(notes, merged)) return std::nullopt;
    return merged;
}

std::optional<std::string> UnsavedNotes::Save(const LPath& notes, std::string_view earlier,
                                              std::string_view text) {
    Forget(notes);
    std::optional<std::string> written = TryWrite(notes, earlier, text);
    if (!written) Keep(notes, earlier, text);
    return written;
}

void UnsavedNotes::Keep(const LPath& notes, std::string_view earlier, std::string_view text) {
    Forget(notes);
    m_kept.push_back({notes, std::string(earlier), std::string(text)});
}

std::vector<LPath> UnsavedNotes::Retry() {
    std::vector<LPath> written;
    std::erase_if(m_kept, [&](const Kept& kept) {
        if (LFile::IsAbsent(DictationFiles::OfPath(kept.notes).record)) return false;
        if (!TryWrite(kept.notes, kept.earlier, kept.text)) return false;
        written.push_back(kept.notes);
        return true;
    });
    return written;
}

const UnsavedNotes::Kept* UnsavedNotes::Find(const LPath& notes) const {
    const auto found = std::ranges::find(m_kept, notes, &Kept::notes);
    return found == m_kept.end() ? nullptr : &*found;
}

void UnsavedNotes::Forget(const LPath& notes) {
    std::erase_if(m_kept, [&](const Kept& kept) { return kept.notes == notes; });
}
