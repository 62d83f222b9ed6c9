#include "app/window/UnsavedNotes.h"

#include <algorithm>

#include "store/NotesFile.h"

bool UnsavedNotes::Save(const LPath& notes, std::string_view text) {
    Forget(notes);
    if (NotesFile::Write(notes, text)) return true;
    m_kept.push_back({notes, std::string(text)});
    return false;
}

std::vector<LPath> UnsavedNotes::Retry() {
    std::vector<LPath> written;
    std::erase_if(m_kept, [&](const Kept& kept) {
        if (!NotesFile::Write(kept.notes, kept.text)) return false;
        written.push_back(kept.notes);
        return true;
    });
    return written;
}

const std::string* UnsavedNotes::Find(const LPath& notes) const {
    const auto found = std::ranges::find(m_kept, notes, &Kept::notes);
    return found == m_kept.end() ? nullptr : &found->text;
}

void UnsavedNotes::Forget(const LPath& notes) {
    std::erase_if(m_kept, [&](const Kept& kept) { return kept.notes == notes; });
}
