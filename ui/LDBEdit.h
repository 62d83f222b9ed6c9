#pragma once

#include <cstdint>

#include "base/LLevel.h"
#include "ui/LWin.h"

// Makes an edit control of a dialog edit a level ("-20dB", or "--dB" for no signal). The user may leave out
// "dB"; when the control loses the focus it shows a level in full, or again the level before the editing if
// the text is none. The Up and Down keys change the level by 1 dB.
// Object and control may be destroyed in either order; the object keeps the level.
// Units:  dB, -127 to 127.
// Thread: the window thread.
class LDBEdit {
public:
    LDBEdit() = default;
    ~LDBEdit() { Detach(); }
    LDBEdit(const LDBEdit&) = delete;
    LDBEdit& operator=(const LDBEdit&) = delete;

    // Subclasses an existing control and shows the level.
    void Attach(HWND edit, int8_t levelDb);

    // The level that the control shows; while its text is none, the level before the editing.
    int8_t Level() const;
    void SetLevel(int32_t levelDb);  // clamped to -127 to 127

private:
    static LRESULT CALLBACK EditProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    bool HandleKey(UINT message, WPARAM key);
    void Detach();

    HWND m_edit = nullptr;
    WNDPROC m_editProc = nullptr;
    int8_t m_levelDb = kSilenceDb;
};
