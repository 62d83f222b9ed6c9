#pragma once

#include <optional>

#include "store/DictationFiles.h"

// The parts of the list's selection that decide which dictation is the current one.
class DictationSelection {
public:
    virtual ~DictationSelection() = default;
    // Focused: the focused row if it is selected. First: the first selected row. Nothing when there is none.
    virtual std::optional<DictationFiles> Focused() const = 0;
    virtual std::optional<DictationFiles> First() const = 0;
    virtual bool IsSelected(const DictationFiles& files) const = 0;
};

// Knows the current dictation: the one whose notes and position are shown, that is recorded onto, and that
// other programs mean. List, notes, transport and buttons all ask here. Working it out from the selection at
// each place was rejected: order and focus of the selection change within one command, the answers differed,
// and one dictation's words went into another.
// Thread: the window thread.
class CurrentDictation {
public:
    // The dictation that the selection asks for: the focused row if it is selected; else the current one, if
    // it is still selected; else the first selected one; nothing when none is selected.
    std::optional<DictationFiles> Choose(const DictationSelection& selection) const;
    void Set(const std::optional<DictationFiles>& files) { m_files = files; }

    const std::optional<DictationFiles>& Files() const { return m_files; }
    explicit operator bool() const { return m_files.has_value(); }
    bool Is(const std::optional<DictationFiles>& files) const;

private:
    std::optional<DictationFiles> m_files;
};
