#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/LPath.h"

// Saves notes, and keeps the text of those that could not be saved (a full disk, a file that another program holds)
// until they are: nothing typed is lost by selecting another dictation.
// Thread: the window thread.
class UnsavedNotes {
public:
    // Writes the notes of a dictation; false when they could not be written and are kept here.
    bool Save(const LPath& notes, std::string_view text);
    // Tries once more to write all that is kept. The paths of those that were written.
    std::vector<LPath> Retry();
    // The text that is kept for a dictation; nullptr when what is on the disk is true.
    const std::string* Find(const LPath& notes) const;
    // The dictation is gone, and its notes with it.
    void Forget(const LPath& notes);

    bool Empty() const { return m_kept.empty(); }
    // The first of those that are kept.
    const LPath& First() const { return m_kept.front().notes; }

private:
    struct Kept {
        LPath notes;
        std::string text;
    };
    std::vector<Kept> m_kept;
};
