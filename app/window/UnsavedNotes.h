#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/LPath.h"

// Saves notes, and keeps the text of those that cannot be saved (a full disk, a file that another program
// holds) until they can: typed text is not lost when the user selects another dictation. Asking the user at
// once was rejected: a box at every pause of typing while the disk is full.
// Thread: the window thread.
class UnsavedNotes {
public:
    // Writes the notes of a dictation; false when that failed and the text is kept here.
    bool Save(const LPath& notes, std::string_view text);
    // Tries again to write all kept notes. Returns the paths of those that were written.
    std::vector<LPath> Retry();
    // The kept text of a dictation; nullptr when the file holds the current text.
    const std::string* Find(const LPath& notes) const;
    // Drops the text of a deleted dictation.
    void Forget(const LPath& notes);

    bool Empty() const { return m_kept.empty(); }
    // The first kept one. Precondition: not Empty().
    const LPath& First() const { return m_kept.front().notes; }

private:
    struct Kept {
        LPath notes;
        std::string text;
    };
    std::vector<Kept> m_kept;
};
