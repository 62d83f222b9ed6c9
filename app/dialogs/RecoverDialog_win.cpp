#include "app/dialogs/RecoverDialog_win.h"

#include <algorithm>
#include <utility>

#include "base/LText.h"
#include "res/Ids.h"
#include "store/DictationFiles.h"

namespace {

constexpr DWORD kFirstRepeatMs = 1000;  // longer than a held key takes to repeat for the first time
constexpr DWORD kNextRepeatMs = 150;    // and from then on
constexpr int kTextMargin = 8;          // pixels behind the longest row

constexpr LAnchor kAnchors[] = {
    {.control = IDC_RECOVER_LIST, .growsX = true, .growsY = true},
    {.control = IDC_RECOVER_PLAY, .movesY = true},
    {.control = IDOK, .movesX = true, .movesY = true},
    {.control = IDCANCEL, .movesX = true, .movesY = true},
};

}  // namespace

bool RecoverDialog::InitDialog() {
    m_anchors.Attach(Window(), kAnchors);
    SetupList();
    SetTimer(Window(), TIMER_REFRESH, SentHistory::kLookMs, nullptr);
    SetFocus(Item(IDC_RECOVER_LIST));
    return false;
}

bool RecoverDialog::HandleMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) {
    switch (message) {
        case WM_COMMAND:
            return EvCommand(LOWORD(wParam), HIWORD(wParam)) ||
                   LDialog::HandleMessage(message, wParam, lParam, result);
        case WM_TIMER:
            EvTimer();
            return true;
        default:
            return m_anchors.HandleMessage(message, wParam, lParam) ||
                   LDialog::HandleMessage(message, wParam, lParam, result);
    }
}

bool RecoverDialog::EvCommand(int control, int notification) {
    switch (control) {
        case IDC_RECOVER_LIST:
            if (notification == LBN_SELCHANGE) ShowButtons();
            if (notification == LBN_DBLCLK) CmPlay();
            return true;
        case IDC_RECOVER_PLAY:
            CmPlay();
            return true;
        case IDOK:
            CmOk();
            return true;
        default:
            return false;
    }
}

void RecoverDialog::EvTimer() {
    if (m_history.Refresh(SentHistory::kReadBudgetMs)) SetupList();
}

// Fills the list. The selection stays with its dictation; where that is gone, with its place.
void RecoverDialog::SetupList() {
    const SentDictation* const before = Selected();
    const LPath record = before != nullptr ? before->record : LPath();
    LRESULT selected = ListMessage(LB_GETCURSEL);
    const LRESULT top = ListMessage(LB_GETTOPINDEX);
    m_shown = m_history.Dictations();
    ListMessage(WM_SETREDRAW, FALSE);
    ListMessage(LB_RESETCONTENT);
    int width = 0;
    {
        const LTextMeasure measure(Item(IDC_RECOVER_LIST));
        for (const SentDictation& dictation : m_shown) {
            const std::string text = dictation.Text();
            const LRESULT row = ListMessage(LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text.c_str()));
            ListMessage(LB_SETITEMDATA, row, dictation.number);
            width = std::max(width, measure.WidthOf(text));
        }
    }
    ListMessage(LB_SETHORIZONTALEXTENT, width + kTextMargin);
    const auto same = std::ranges::find(m_shown, record, &SentDictation::record);
    if (selected >= 0 && same != m_shown.end()) selected = same - m_shown.begin();
    ListMessage(LB_SETCURSEL, std::min<LRESULT>(selected, static_cast<LRESULT>(m_shown.size()) - 1));
    ListMessage(LB_SETTOPINDEX, top);
    ListMessage(WM_SETREDRAW, TRUE);
    InvalidateRect(Item(IDC_RECOVER_LIST), nullptr, TRUE);
    ShowButtons();
}

void RecoverDialog::ShowButtons() {
    const bool isSelected = Selected() != nullptr;
    const bool plays = m_playback.IsPlaying();
    const HWND focus = GetFocus();
    LSetWindowText(Item(IDC_RECOVER_PLAY), plays ? "&Stop" : "&Play");
    EnableWindow(Item(IDC_RECOVER_PLAY), isSelected || plays);
    EnableWindow(Item(IDOK), isSelected);
    // The keyboard must not stay with a control that is disabled now.
    if (focus != nullptr && !IsWindowEnabled(focus)) SetFocus(Item(IDC_RECOVER_LIST));
}

void RecoverDialog::CmPlay() {
    if (m_playback.IsPlaying()) return StopPlaying();
    const SentDictation* const dictation = Selected();
    if (dictation == nullptr) return;
    m_owner.StopTransport();
    const LPath audio = DictationFiles::OfPath(dictation->record).audio;
    const Playback::Result result = m_playback.Play(audio, 0, PlaySpeed::Normal);
    ShowButtons();
    if (result == Playback::Result::NothingToPlay) Tell("This dictation holds no sound.");
    if (*Playback::Text(result) != 0) Tell(Playback::Text(result), Playback::Caption(result));
}

void RecoverDialog::CmOk() {
    const SentDictation* const selected = Selected();
    if (IsHeldKey() || selected == nullptr) return;
    const SentDictation dictation = *selected;
    StopPlaying();  // the file is open as long as it plays
    const std::string reason = m_owner.BringBack(dictation.record);
    if (reason.empty()) m_recoveredMs = m_lastOkMs;
    if (!IsOpen()) return;
    m_history.Refresh(SentHistory::kReadBudgetMs);
    SetupList();
    if (!reason.empty())
        Tell(LFormat("\"%.80s\" could not be recovered.\n\n", dictation.name.c_str()) + reason);
}

// Enter that is held would recover one dictation after the other.
bool RecoverDialog::IsHeldKey() {
    const DWORD nowMs = static_cast<DWORD>(GetMessageTime());
    const DWORD sinceAskedMs = nowMs - std::exchange(m_lastOkMs, nowMs);
    if (!m_recoveredMs || GetKeyState(VK_RETURN) >= 0) return false;
    return nowMs - *m_recoveredMs < kFirstRepeatMs || sinceAskedMs < kNextRepeatMs;
}

void RecoverDialog::StopPlaying() {
    m_playback.Stop();
    if (IsOpen()) ShowButtons();
}

void RecoverDialog::PlaybackEnded(Playback::Ending ending) {
    ShowButtons();
    if (*Playback::Text(ending) != 0) Tell(Playback::Text(ending));
}

void RecoverDialog::Tell(std::string_view text, std::string_view caption) {
    LMessageBox(Window(), text, caption, MB_OK | MB_ICONEXCLAMATION);
}

const SentDictation* RecoverDialog::Selected() const {
    const LRESULT row = ListMessage(LB_GETCURSEL);
    return row >= 0 && row < static_cast<LRESULT>(m_shown.size()) ? &m_shown[static_cast<size_t>(row)]
                                                                  : nullptr;
}

LRESULT RecoverDialog::ListMessage(UINT message, LRESULT item, LPARAM parameter) const {
    return SendMessageA(Item(IDC_RECOVER_LIST), message, static_cast<WPARAM>(item), parameter);
}
