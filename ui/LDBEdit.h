#pragma once

#include <cstdint>

#include "base/LLevel.h"
#include "ui/LWin.h"

// Makes a dialog's edit control edit a level ("-20dB", or "--dB" for no signal). What is typed may leave "dB"
// out; when the focus leaves, a level is written in full, and anything else gives way to the level before. Up
// and Down change it by 1 dB.
// Attach it once the control exists. Either may go first; the level stays. Thread: the window thread.
class LDBEdit {
public:
    LDBEdit() = default;
    ~LDBEdit() { Detach(); }
    LDBEdit(const LDBEdit&) = delete;
    LDBEdit& operator=(const LDBEdit&) = delete;

    void Attach(HWND edit, int8_t levelDb);

    // What the control shows now; while that is no level, the one it showed before it was edited.
    int8_t Level() const;
    void SetLevel(int32_t levelDb);  // held within -127 to 127

private:
    static LRESULT CALLBACK EditProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    bool HandleKey(UINT message, WPARAM key);
    void Detach();

    HWND m_edit = nullptr;
    WNDPROC m_editProc = nullptr;
    int8_t m_levelDb = kSilenceDb;
};
