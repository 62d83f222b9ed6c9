#pragma once

#include <optional>
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
    // A text that is not in its file yet, and the text of the file that it was made from.
    struct Kept {
        LPath notes;
        std::string earlier;
        std::string text;
    };

    // Writes the notes of a dictation, together with the changes that another program has made to the
    // earlier text. Returns the contents of the file; nullopt when that failed and the text is kept here.
    std::optional<std::string> Save(const LPath& notes, std::string_view earlier, std::string_view text);
    // Keeps a text whose dictation may be gone: it must not become a file without a record.
    void Keep(const LPath& notes, std::string_view earlier, std::string_view text);
    // Tries again to write all kept notes whose dictation has a record. Returns the paths of those that were
    // written.
    std::vector<LPath> Retry();
    // The kept text of a dictation; nullptr when the file holds the current text.
    const Kept* Find(const LPath& notes) const;
    // Drops the text of a deleted dictation.
    void Forget(const LPath& notes);

    const std::vector<Kept>& All() const { return m_kept; }
    bool Empty() const { return m_kept.empty(); }
    // The first kept one. Precondition: not Empty().
    const LPath& First() const { return m_kept.front().notes; }

private:
    std::vector<Kept> m_kept;
};
