#include "app/window/NotesBox_win.h"

#include <algorithm>

#include "app/window/NotesText.h"
#include "app/window/PromptedField.h"
#include "base/LFile.h"
#include "base/LTrace.h"
#include "res/Ids.h"
#include "store/DictationFiles.h"
#include "store/NotesFile.h"
#include "ui/LWin.h"

// Every change restarts a timer of half a second, so the file is written once for each pause of typing and
// not for each key.
// A text that the control cannot hold completely is never saved back, since the rest would be lost. Whether
// it was held is seen from the control's own length after setting it. Nor is one that the control would lay
// out for seconds: it is shown with line breaks that are not its own.
// Another Windows session may write the same notes: a text is saved together with the text that is in the
// file by then, and the control shows both.

constexpr UINT kSaveAfterMs = 500;
// Bytes. Every platform lays out so much without a noticeable delay (10 MB took seconds).
constexpr size_t kMostEdited = 262143;
constexpr size_t kMostEditedOn95 = 65535;  // the limit of an edit control on Windows 95, 98 and Me
constexpr char kTooLong[] = "Notes too long to be edited here";
constexpr char kNoDictation[] = "Press Record or New to begin";
constexpr char kCannotRead[] = "Notes cannot be read at present";

static size_t MostEdited() {
    constexpr DWORD kIs9x = 0x80000000;
    return (GetVersion() & kIs9x) != 0 ? kMostEditedOn95 : kMostEdited;
}

void NotesBox::Attach(HWND edit, HWND dialog, Owner& owner) {
    m_edit = edit;
    m_dialog = dialog;
    m_owner = &owner;
    SendMessageA(m_edit, EM_SETLIMITTEXT, MostEdited(), 0);
    SetWindowLongA(m_edit, GWL_USERDATA, reinterpret_cast<LONG>(this));
    m_editProc =
        reinterpret_cast<WNDPROC>(SetWindowLongA(m_edit, GWL_WNDPROC, reinterpret_cast<LONG>(EditProc)));
    Load(LPath());
}

// Hides from the dialog that the control wants its text selected: a dialog selects the whole text when the
// Tab key reaches the control, and the next key typed would replace all notes.
LRESULT CALLBACK NotesBox::EditProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* box = reinterpret_cast<NotesBox*>(GetWindowLongA(window, GWL_USERDATA));
    if (message == WM_KILLFOCUS) box->m_leftFor = reinterpret_cast<HWND>(wParam);
    if (message == WM_SETFOCUS) box->m_leftFor = nullptr;
    const LRESULT result = CallWindowProcA(box->m_editProc, window, message, wParam, lParam);
    return message == WM_GETDLGCODE ? result & ~DLGC_HASSETSEL : result;
}

void NotesBox::Load(const LPath& notesFile) {
    KillTimer(m_dialog, TIMER_SAVENOTES);
    m_file = notesFile;
    m_isModified = false;
    if (const UnsavedNotes::Kept* kept = m_unsaved.Find(m_file)) {
        m_earlier = kept->earlier;
        return Show(kept->text, nullptr);
    }
    m_earlier.clear();
    const bool isRead = m_file.Empty() || NotesFile::Read(m_file, m_earlier);
    Show(m_earlier, isRead ? nullptr : kCannotRead);
}

// Editable unless there is a reason against it.
void NotesBox::Show(std::string_view text, const char* readOnlyReason) {
    const size_t most = MostEdited();
    if (text.size() > most || !IsLaidOutQuickly(text)) readOnlyReason = kTooLong;
    std::string shown(m_file.Empty() ? kNoDictation : text.substr(0, most));
    if (readOnlyReason != nullptr) shown = BreakLongLines(shown).substr(0, most);
    m_isLoading = true;
    SetWindowTextA(m_edit, shown.c_str());
    m_isLoading = false;
    // A text that was cut by the control must not be saved over the whole one.
    if (static_cast<size_t>(GetWindowTextLengthA(m_edit)) != shown.size()) readOnlyReason = kTooLong;
    if (readOnlyReason == kTooLong) LTrace("NotesBox::Load notes too long to edit:", m_file.View());
    m_readOnlyReason = readOnlyReason;
    SendMessageA(m_edit, EM_SETREADONLY, readOnlyReason == nullptr ? FALSE : TRUE, 0);
    EnableWindow(m_edit, !m_file.Empty());
    m_owner->NotesStateChanged();
}

// Shows the text that is in the file, and leaves the cursor at the word where it was.
void NotesBox::ShowMerged(std::string_view shown, const std::string& merged) {
    m_earlier = merged;
    if (shown == merged) return;
    const auto same = static_cast<DWORD>(SharedBytes(shown, merged));
    DWORD at = 0;
    SendMessageA(m_edit, EM_GETSEL, 0, reinterpret_cast<LPARAM>(&at));
    if (at > same) at += static_cast<DWORD>(merged.size() - shown.size());
    Show(merged, nullptr);
    SendMessageA(m_edit, EM_SETSEL, at, static_cast<LPARAM>(at));
    SendMessageA(m_edit, EM_SCROLLCARET, 0, 0);
}

bool NotesBox::Save() {
    KillTimer(m_dialog, TIMER_SAVENOTES);
    if (!m_isModified || m_file.Empty()) {
        Retry();
    } else {
        m_isModified = false;
        const std::string text = LWindowText(m_edit);
        // A file without a record would never be listed or sent.
        const DictationFiles files = DictationFiles::OfPath(m_file);
        if (files.IsGone() || LFile::IsAbsent(files.record)) {
            m_unsaved.Keep(m_file, m_earlier, text);
            m_owner->TypedForNothing(m_file);
            m_owner->NotesStateChanged();
            return false;
        }
        if (const std::optional<std::string> written = m_unsaved.Save(m_file, m_earlier, text)) {
            ShowMerged(text, *written);
            m_owner->NotesSaved(m_file);
            Retry();
        }
        m_owner->NotesStateChanged();
    }
    return m_unsaved.Find(m_file) == nullptr;
}

void NotesBox::Retry() {
    if (m_unsaved.Empty()) return;
    for (const LPath& written : m_unsaved.Retry()) {
        std::string text;
        if (written == m_file && NotesFile::Read(m_file, text)) ShowMerged(LWindowText(m_edit), text);
        m_owner->NotesSaved(written);
    }
    for (const UnsavedNotes::Kept& kept : m_unsaved.All())
        if (LFile::IsAbsent(DictationFiles::OfPath(kept.notes).record)) m_owner->TypedForNothing(kept.notes);
    m_owner->NotesStateChanged();
}

void NotesBox::Forget(const LPath& notesFile) {
    m_unsaved.Forget(notesFile);
    if (m_file == notesFile) m_isModified = false;
    m_owner->NotesStateChanged();
}

void NotesBox::EvChange() {
    if (m_isLoading || m_file.Empty()) return;
    m_isModified = true;
    SetTimer(m_dialog, TIMER_SAVENOTES, kSaveAfterMs, nullptr);
}

void NotesBox::Append(std::string_view text) {
    if (m_readOnlyReason != nullptr) Load(m_file);  // the file may have been held by another program
    if (m_file.Empty() || m_readOnlyReason != nullptr) return;
    // The user's selection is restored: he may be typing in the middle of the notes.
    DWORD from = 0;
    DWORD to = 0;
    SendMessageA(m_edit, EM_GETSEL, reinterpret_cast<WPARAM>(&from), reinterpret_cast<LPARAM>(&to));
    const int end = GetWindowTextLengthA(m_edit);
    SendMessageA(m_edit, EM_SETSEL, static_cast<WPARAM>(end), end);
    SendMessageA(m_edit, EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>(std::string(text).c_str()));
    if (static_cast<int>(to) < end) SendMessageA(m_edit, EM_SETSEL, from, static_cast<LPARAM>(to));
    EvChange();
}

void NotesBox::SetField(const LPath& notesFile, std::string_view tag, std::string_view answer) {
    if (m_file != notesFile || m_readOnlyReason != nullptr) return;
    const std::string text = WithField(LWindowText(m_edit), tag, answer);
    SetWindowTextA(m_edit, text.c_str());
    const auto end = static_cast<WPARAM>(text.size());
    SendMessageA(m_edit, EM_SETSEL, end, static_cast<LPARAM>(end));
    EvChange();
}
