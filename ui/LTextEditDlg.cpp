#include "ui/LTextEditDlg.h"

#include "res/Ids.h"

// Cuts a text to a number of bytes at a character boundary: the edit control limits characters, and a
// character of a double-byte code page has two bytes.
static void CutToBytes(std::string& text, size_t mostBytes) {
    const char* end = text.c_str();
    while (*end != 0) {
        const char* next = CharNextA(end);
        if (static_cast<size_t>(next - text.c_str()) > mostBytes) break;
        end = next;
    }
    text.resize(static_cast<size_t>(end - text.c_str()));
}

std::optional<std::string> LTextEditDlg::Ask(HWND owner, std::string_view title, std::string_view question,
                                             std::string_view text) {
    LTextEditDlg dialog(title, question, text);
    if (dialog.RunModal(IDD_TEXTEDIT, owner) != IDOK) return std::nullopt;
    return dialog.m_text;
}

bool LTextEditDlg::InitDialog() {
    SetWindowTextA(Window(), m_title.c_str());
    SetWindowTextA(Item(IDC_TEXTEDIT_QUESTION), m_question.c_str());
    CutToBytes(m_text, kMostBytes);
    const HWND edit = Item(IDC_TEXTEDIT_TEXT);
    SendMessageA(edit, EM_SETLIMITTEXT, kMostBytes, 0);
    SetWindowTextA(edit, m_text.c_str());
    SendMessageA(edit, EM_SETSEL, 0, -1);
    SetFocus(edit);
    return false;
}

bool LTextEditDlg::HandleMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) {
    if (message == WM_COMMAND && LOWORD(wParam) == IDOK) {
        m_text = LWindowText(Item(IDC_TEXTEDIT_TEXT));
        CutToBytes(m_text, kMostBytes);
    }
    return LDialog::HandleMessage(message, wParam, lParam, result);
}
