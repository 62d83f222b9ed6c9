#pragma once

#include <windows.h>

#include <string>
#include <string_view>

#include "app/window/UnsavedNotes.h"
#include "base/LPath.h"

// The edit control with the notes of the current dictation. They are loaded when it becomes current, and
// saved half a second after typing pauses and before any command touches the dictation. Notes that cannot be
// saved are kept in memory and saved later (UnsavedNotes).
// Thread: the window thread.
class NotesBox {
public:
    class Owner {
    public:
        virtual ~Owner() = default;
        // Notes were written, not always those of the current dictation.
        virtual void NotesSaved(const LPath& notesFile) = 0;
        // A text was typed into the notes of a dictation that has no record any more; it is kept, not
        // written.
        virtual void TypedForNothing(const LPath& notesFile) = 0;
        // The set of unsaved notes may have changed, or ReadOnlyReason.
        virtual void NotesStateChanged() = 0;
    };

    // Takes over the control, which is empty and disabled until Load.
    void Attach(HWND edit, HWND dialog, Owner& owner);

    // Shows the notes of a dictation; an empty path empties and disables the control. Call Save before. Notes
    // that cannot be read, are longer than the control holds (65,535 bytes on
    // Windows 95 and 98, 262,143 elsewhere), or would keep the control busy are shown read-only
    // and never written back.
    void Load(const LPath& notesFile);
    // Writes the typed text, joined with the text that another program has written meanwhile, and
    // earlier unsaved notes; stops the timer. False when notes of this dictation are still unsaved.
    bool Save();
    // The control reported a change: marks the text modified and restarts the timer.
    void EvChange();
    // Appends a text of another program, keeping the user's selection.
    void Append(std::string_view text);
    // Sets a prompted field (WithField) in the notes of this file, if they are the ones that are shown.
    void SetField(const LPath& notesFile, std::string_view tag, std::string_view answer);
    // The dictation was deleted: its unsaved notes are dropped.
    void Forget(const LPath& notesFile);

    // The window that took the focus from the notes; null while they have it.
    HWND LeftFor() const { return m_leftFor; }
    const LPath& File() const { return m_file; }
    // Text for the user; nullptr while the notes can be edited.
    const char* ReadOnlyReason() const { return m_readOnlyReason; }
    const UnsavedNotes& Unsaved() const { return m_unsaved; }

private:
    static LRESULT CALLBACK EditProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    void Retry();
    void ShowMerged(std::string_view shown, const std::string& merged);
    void Show(std::string_view text, const char* readOnlyReason);

    WNDPROC m_editProc = nullptr;  // the platform's own
    HWND m_edit = nullptr;
    HWND m_dialog = nullptr;
    HWND m_leftFor = nullptr;
    Owner* m_owner = nullptr;
    UnsavedNotes m_unsaved;
    LPath m_file;
    std::string m_earlier;  // contents of the file when it was last read or written
    const char* m_readOnlyReason = nullptr;
    bool m_isModified = false;
    bool m_isLoading = false;
};
