#include "app/window/NotesBox_win.h"

#include <algorithm>

#include "base/LTrace.h"
#include "res/Ids.h"
#include "store/NotesFile.h"
#include "ui/LWin.h"

constexpr UINT kSaveAfterMs = 500;
constexpr size_t kMostEdited =
    65535;  // bytes; what Windows 95 can hold, and no platform takes long to lay out

void NotesBox::Attach(HWND edit, HWND dialog) {
    m_edit = edit;
    m_dialog = dialog;
    SendMessageA(m_edit, EM_SETLIMITTEXT, kMostEdited, 0);
    SetWindowLongA(m_edit, GWL_USERDATA, reinterpret_cast<LONG>(this));
    m_editProc =
        reinterpret_cast<WNDPROC>(SetWindowLongA(m_edit, GWL_WNDPROC, reinterpret_cast<LONG>(EditProc)));
}

// A dialog selects the whole text of an edit control that the Tab key reaches; the next key typed would then
// replace all the notes.
LRESULT CALLBACK NotesBox::EditProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    const auto* box = reinterpret_cast<const NotesBox*>(GetWindowLongA(window, GWL_USERDATA));
    const LRESULT result = CallWindowProcA(box->m_editProc, window, message, wParam, lParam);
    return message == WM_GETDLGCODE ? result & ~DLGC_HASSETSEL : result;
}

void NotesBox::Load(const LPath& notesFile) {
    KillTimer(m_dialog, TIMER_SAVENOTES);
    m_file = notesFile;
    m_isModified = false;
    std::string text;
    const bool isRead = (m_file.Empty() || NotesFile::Read(m_file, text)) && text.size() <= kMostEdited;
    if (!isRead) text.resize(std::min(text.size(), kMostEdited));
    m_isLoading = true;
    SetWindowTextA(m_edit, text.c_str());
    m_isLoading = false;
    // What the control could not take must not be lost by saving the rest over it.
    const bool isWhole = isRead && static_cast<size_t>(GetWindowTextLengthA(m_edit)) == text.size();
    if (!isWhole) LTrace("NotesBox::Load notes too long to edit:", m_file.View());
    SendMessageA(m_edit, EM_SETREADONLY, isWhole ? FALSE : TRUE, 0);
    EnableWindow(m_edit, !m_file.Empty());
}

bool NotesBox::Save() {
    KillTimer(m_dialog, TIMER_SAVENOTES);
    if (!m_isModified || m_file.Empty()) return false;
    m_isModified = false;
    return NotesFile::Write(m_file, LWindowText(m_edit));
}

void NotesBox::EvChange() {
    if (m_isLoading || m_file.Empty()) return;
    m_isModified = true;
    SetTimer(m_dialog, TIMER_SAVENOTES, kSaveAfterMs, nullptr);
}

void NotesBox::Append(std::string_view text) {
    const bool isReadOnly = (GetWindowLongA(m_edit, GWL_STYLE) & ES_READONLY) != 0;
    if (m_file.Empty() || isReadOnly) return;
    // The user may be typing in the middle of the notes.
    DWORD from = 0;
    DWORD to = 0;
    SendMessageA(m_edit, EM_GETSEL, reinterpret_cast<WPARAM>(&from), reinterpret_cast<LPARAM>(&to));
    const int end = GetWindowTextLengthA(m_edit);
    SendMessageA(m_edit, EM_SETSEL, static_cast<WPARAM>(end), end);
    SendMessageA(m_edit, EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>(std::string(text).c_str()));
    if (static_cast<int>(to) < end) SendMessageA(m_edit, EM_SETSEL, from, static_cast<LPARAM>(to));
    EvChange();
}
