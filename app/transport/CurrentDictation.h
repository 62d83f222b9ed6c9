#pragma once

#include <optional>

#include "store/DictationFiles.h"

// What of the list's selection decides which dictation is the current one.
class DictationSelection {
public:
    virtual ~DictationSelection() = default;
    // The focused row when it is selected, and the first of the selected rows; nothing when there is none.
    virtual std::optional<DictationFiles> Focused() const = 0;
    virtual std::optional<DictationFiles> First() const = 0;
    virtual bool IsSelected(const DictationFiles& files) const = 0;
};

// Knows which dictation is the current one: the one whose notes are shown, whose position stands still or moves, onto
// which is recorded, and which other programs mean. List, notes, transport and buttons follow it; nobody else
// works it out from the selection, whose order and focus change under him.
// Thread: the window thread.
class CurrentDictation {
public:
    // Which one the selection asks for: the focused row when it is selected, else the one that was current before as
    // long as it is selected, else the first of the selected ones; none when none is selected.
    std::optional<DictationFiles> Choose(const DictationSelection& selection) const;
    void Set(const std::optional<DictationFiles>& files) { m_files = files; }

    const std::optional<DictationFiles>& Files() const { return m_files; }
    explicit operator bool() const { return m_files.has_value(); }
    bool Is(const std::optional<DictationFiles>& files) const;

private:
    std::optional<DictationFiles> m_files;
};
