#pragma once

#include <windows.h>

#include <string_view>

#include "base/LPath.h"

// The notes of the current dictation: loaded when it is selected, saved half a second after typing pauses and
// before anything else happens to the dictation.
// Thread: the window thread.
class NotesBox {
public:
    void Attach(HWND edit, HWND dialog);

    // Shows the notes file of a dictation; an empty path empties and disables the box. Call Save before.
    void Load(const LPath& notesFile);
    // Writes modified notes and disarms the timer; true when the file was written.
    bool Save();
    // The text changed: marks it modified and arms the timer.
    void EvChange();
    void Append(std::string_view text);

    const LPath& File() const { return m_file; }

private:
    static LRESULT CALLBACK EditProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

    WNDPROC m_editProc = nullptr;  // the platform's own
    HWND m_edit = nullptr;
    HWND m_dialog = nullptr;
    LPath m_file;
    bool m_isModified = false;
    bool m_isLoading = false;
};
