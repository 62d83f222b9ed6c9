#pragma once

#include <windows.h>

#include <string_view>

#include "app/window/UnsavedNotes.h"
#include "base/LPath.h"

// The notes of the current dictation: loaded when it becomes current, saved half a second after typing pauses and
// before anything else happens to the dictation. Notes that cannot be saved are kept and saved later.
// Thread: the window thread.
class NotesBox {
public:
    class Owner {
    public:
        virtual ~Owner() = default;
        // Notes of a dictation, not always of the current one, were written.
        virtual void NotesSaved(const LPath& notesFile) = 0;
        // Whether there are notes that could not be saved may have changed.
        virtual void UnsavedNotesChanged() = 0;
    };

    // Empty and disabled, as long as there is no dictation.
    void Attach(HWND edit, HWND dialog, Owner& owner);

    // Shows the notes of a dictation; an empty path empties and disables the box. Call Save before.
    void Load(const LPath& notesFile);
    // Writes what was typed, and what could not be written before; disarms the timer. False when there are still
    // notes of this dictation that are not on the disk.
    bool Save();
    // The text changed: marks it modified and arms the timer.
    void EvChange();
    void Append(std::string_view text);
    // The dictation was deleted.
    void Forget(const LPath& notesFile);

    // What took the keyboard from the notes last.
    HWND LeftFor() const { return m_leftFor; }
    const LPath& File() const { return m_file; }
    const UnsavedNotes& Unsaved() const { return m_unsaved; }

private:
    static LRESULT CALLBACK EditProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    void Retry();
    void Show(std::string_view text, bool isWhole);

    WNDPROC m_editProc = nullptr;  // the platform's own
    HWND m_edit = nullptr;
    HWND m_dialog = nullptr;
    HWND m_leftFor = nullptr;
    Owner* m_owner = nullptr;
    UnsavedNotes m_unsaved;
    LPath m_file;
    bool m_isModified = false;
    bool m_isLoading = false;
};
