#include "ui/LDBEdit.h"

#include "base/LArith.h"

// Room for a level with blanks around it.
constexpr WPARAM kMostCharacters = 16;
// Characters that can be typed.
constexpr std::string_view kTyped = "0123456789+- dDbB";

void LDBEdit::Attach(HWND edit, int8_t levelDb) {
    Detach();
    m_edit = edit;
    SendMessageA(m_edit, EM_SETLIMITTEXT, kMostCharacters, 0);
    SetWindowLongA(m_edit, GWL_USERDATA, reinterpret_cast<LONG>(this));
    m_editProc =
        reinterpret_cast<WNDPROC>(SetWindowLongA(m_edit, GWL_WNDPROC, reinterpret_cast<LONG>(EditProc)));
    SetLevel(levelDb);
}

void LDBEdit::Detach() {
    if (m_edit == nullptr) return;
    m_levelDb = Level();
    SetWindowLongA(m_edit, GWL_WNDPROC, reinterpret_cast<LONG>(m_editProc));
    SetWindowLongA(m_edit, GWL_USERDATA, 0);
    m_edit = nullptr;
}

int8_t LDBEdit::Level() const {
    return m_edit ? LParseLevel(LWindowText(m_edit)).value_or(m_levelDb) : m_levelDb;
}

void LDBEdit::SetLevel(int32_t levelDb) {
    m_levelDb = static_cast<int8_t>(Clamp<int32_t>(levelDb, kSilenceDb, kMaxDb));
    if (m_edit) LSetWindowText(m_edit, LFormatLevel(m_levelDb));
}

bool LDBEdit::HandleKey(UINT message, WPARAM key) {
    if (message == WM_CHAR) {
        // Control characters are editing keys (backspace, copy, paste); pasted text is checked when the focus
        // leaves.
        if (key < ' ' || (key <= 0x7F && kTyped.find(static_cast<char>(key)) != kTyped.npos)) return false;
        MessageBeep(MB_OK);
        return true;
    }
    if (message != WM_KEYDOWN || (key != VK_UP && key != VK_DOWN)) return false;
    if (GetWindowLongA(m_edit, GWL_STYLE) & ES_READONLY) return true;
    SetLevel(Level() + (key == VK_UP ? 1 : -1));
    SendMessageA(m_edit, EM_SETSEL, 0, -1);
    return true;
}

LRESULT CALLBACK LDBEdit::EditProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* edit = reinterpret_cast<LDBEdit*>(GetWindowLongA(window, GWL_USERDATA));
    const WNDPROC proc = edit->m_editProc;
    if (message == WM_DESTROY) edit->Detach();
    if (edit->HandleKey(message, wParam)) return 0;
    // Before the control tells its dialog that the focus has left.
    if (message == WM_KILLFOCUS) edit->SetLevel(edit->Level());
    return CallWindowProcA(proc, window, message, wParam, lParam);
}
