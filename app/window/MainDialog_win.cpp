#include "app/window/MainDialog_win.h"

#include <windowsx.h>

#include <commctrl.h>
#include <cstdlib>
#include <ctime>

#include "app/dialogs/IntroductionPages_win.h"
#include "app/window/CommandState.h"
#include "app/window/ControlNames.h"
#include "app/window/HoldButton_win.h"
#include "app/window/TransportButton_win.h"
#include "audio/device/LDBDisplay_win.h"
#include "audio/stream/LSoundTime.h"
#include "base/LText.h"
#include "base/LTime.h"
#include "base/LTrace.h"
#include "res/Ids.h"
#include "store/Recovery.h"
#include "store/SettingsKeys.h"
#include "ui/LProgressDialog.h"

namespace {

constexpr UINT kInfoFirstMs = 1000;
constexpr UINT kInfoPeriodMs = 5000;
constexpr uint32_t kSendStopMs = 5000;
constexpr char kQueueFile[] = "bgsend.dat";
constexpr int kPositionFontHeight = 15;   // pixels
constexpr LPARAM kKeyWasDown = 1L << 30;  // of a key message: it repeats

WindDirection DirectionOfKey(WPARAM key) {
    return key == VK_F7 ? WindDirection::Back : WindDirection::Forward;
}

}  // namespace

// In the order of their numbers.
const MainDialog::MessageEntry MainDialog::kMessages[] = {
    {WM_MOVE, &MainDialog::EvMove},
    {WM_SIZE, &MainDialog::EvSize},
    {WM_ACTIVATE, &MainDialog::EvActivate},
    {WM_CLOSE, &MainDialog::EvClose},
    {WM_QUERYENDSESSION, &MainDialog::EvQueryEndSession},
    {WM_ENDSESSION, &MainDialog::EvEndSession},
    {WM_GETMINMAXINFO, &MainDialog::EvGetMinMaxInfo},
    {WM_DRAWITEM, &MainDialog::EvDrawItem},
    {WM_NOTIFY, &MainDialog::EvNotify},
    {WM_CONTEXTMENU, &MainDialog::EvContextMenu},
    {WM_COMMAND, &MainDialog::EvCommand},
    {WM_TIMER, &MainDialog::EvTimer},
    {WM_ENTERMENULOOP, &MainDialog::EvMenuLoop},
    {WM_ENTERSIZEMOVE, &MainDialog::EvDrag},
    {WM_EXITSIZEMOVE, &MainDialog::EvDragEnd},
    {WM_SENDPROGRESS, &MainDialog::EvSendProgress},
    {WM_MICBUTTON, &MainDialog::EvMicButton},
    {WM_APICOMMAND, &MainDialog::EvAPICommand},
    {WM_TRANSPORTTROUBLE, &MainDialog::EvTransportTrouble},
    {WM_ROWCHANGED, &MainDialog::EvRowChanged},
    {WM_SELECTIONMOVED, &MainDialog::EvSelectionMoved},
    {WM_HOLDBUTTON, &MainDialog::EvHoldButton},
};

const MainDialog::TimerEntry MainDialog::kTimers[] = {
    {TIMER_INFOLINE, &MainDialog::EvTimerInfoLine},
    {TIMER_SAVENOTES, &MainDialog::EvTimerSaveNotes},
};

MainDialog::MainDialog(AppState& state)
    : m_state(state),
      m_transport(state, *this),
      m_send(state, m_queue),
      m_layout(state),
      m_introduction(kIntroductionPages) {}

MainDialog::~MainDialog() = default;

// ---- Life ------------------------------------------------------------------------------------------------

bool MainDialog::InitDialog() {
    m_postTo = Window();
    if (m_onCreated) m_onCreated();
    _putenv("TZ=GMT0");  // dates are kept and shown without a time-zone shift
    _tzset();
    LoadIcons();
    ShowIcon(IDI_CORVANE);
    for (int control : {IDC_REWIND, IDC_FASTFORWARD}) AttachHoldButton(Item(control));
    SetPositionFont();
    m_accelerators = LoadAcceleratorsA(LInstance(), MAKEINTRESOURCEA(IDA_MAIN));
    m_layout.Attach(Window());
    m_layout.LayoutNormalSizeAndPosition();
    const std::string userName = ShownUserName(m_state.user.details, m_state.user.number);
    LSetWindowText(Item(IDC_LOGGEDON), LFormat("Logged on as [%s]", userName.c_str()));
    m_notes.Attach(Item(IDC_NOTES), Window());
    m_list.Attach(Item(IDC_LIST), *this);
    RecoverLeftovers();
    m_list.SetupFilesList(m_state.user.currentFolder);
    ApplyRecordMode();
    ShowPlaySpeed();
    InitToolTips();
    SetTimer(Window(), TIMER_INFOLINE, kInfoFirstMs, nullptr);
    StartSending();
    ShowWindow(Window(), m_layout.View() == ViewMode::Maximized ? SW_SHOWMAXIMIZED : SW_SHOWNORMAL);
    m_list.ShowCurrent();
    if (m_state.showIntroduction)
        m_introduction.Show(Window());
    else
        m_splash.Show(Window());
    DeleteOldFiles();
    TestHardDrive();
    LTrace("MainDialog::InitDialog done, ms:",
           LFormat("%lu", static_cast<unsigned long>(LTickMs() - m_startTick)));
    if (IsOpen()) ShowFocus();
    return false;
}

// Loaded once and owned: shared icons would come in whatever size was asked for first.
void MainDialog::LoadIcons() {
    const auto load = [](int resource, int cx, int cy) {
        return LIcon(static_cast<HICON>(LoadImageA(LInstance(), MAKEINTRESOURCEA(resource), IMAGE_ICON,
                                                   GetSystemMetrics(cx), GetSystemMetrics(cy), 0)));
    };
    for (int i = 0; i < 2; ++i) {
        m_icons[i][0] = load(i == 0 ? IDI_CORVANE : IDI_RECORDING, SM_CXICON, SM_CYICON);
        m_icons[i][1] = load(i == 0 ? IDI_CORVANE : IDI_RECORDING, SM_CXSMICON, SM_CYSMICON);
    }
}

void MainDialog::SetPositionFont() {
    LOGFONTA font = {};
    GetObjectA(reinterpret_cast<HFONT>(SendMessageA(Item(IDC_POSITION), WM_GETFONT, 0, 0)), sizeof font,
               &font);
    font.lfHeight = kPositionFontHeight;
    font.lfWidth = 0;
    font.lfWeight = FW_BOLD;
    m_positionFont.Reset(CreateFontIndirectA(&font));
    for (int control : {IDC_POSITION, IDC_DICTATIONNAME})
        SendMessageA(Item(control), WM_SETFONT, reinterpret_cast<WPARAM>(m_positionFont.Get()), FALSE);
}

void MainDialog::InitToolTips() {
    if (!m_toolTips.Create(Window())) return;
    for (const ControlTip& tip : kControlTips) m_toolTips.Add(tip.control, tip.text);
}

void MainDialog::StartSending() {
    SendMessageA(Item(IDC_SENDPROGRESS), PBM_SETRANGE, 0, MAKELPARAM(0, 100));
    m_queue.SetOwner(this);
    m_queue.StartSending();
}

// What an earlier run left half done is put right before anything is listed or sent.
void MainDialog::RecoverLeftovers() {
    m_queue.SetQueuePath(LPath::Join(m_state.data.folder.View(), kQueueFile));
    RecoverDictations(
        m_state.user, [this](const LPath& audio) { return m_queue.IsQueued(audio); }, LNowSeconds());
}

void MainDialog::CloseWindow() {
    if (m_isClosing) return;
    m_isClosing = true;
    FinishRunning();
    SaveNotes();  // at once: the end of a session does not wait for the send thread
    DestroyWindow(Window());
}

void MainDialog::DestroyDialog() {
    KillTimer(Window(), TIMER_INFOLINE);
    m_toolTips.Close();
    m_sendThreadEnded = m_queue.Stop(kSendStopMs);
    m_postTo = nullptr;
    SaveNotes();
    m_transport.Stop();
    m_list.ReleaseFont();
}

bool MainDialog::PreTranslateMessage(MSG& message) {
    if (m_introduction.PreTranslateMessage(message) || WindByKey(message)) return true;
    const bool isKey = message.message == WM_KEYDOWN || message.message == WM_SYSKEYDOWN;
    if (!isKey || m_accelerators == nullptr) return false;
    if (message.hwnd != Window() && !IsChild(Window(), message.hwnd)) return false;

    if (IsNameEditor(message.hwnd)) return false;
    if (message.hwnd == Item(IDC_NOTES)) {  // in the notes these keys move and edit
        for (WPARAM key : {VK_HOME, VK_END, VK_INSERT, VK_DELETE})
            if (message.wParam == key) return false;
    }
    return TranslateAcceleratorA(Window(), m_accelerators, &message) != 0;
}

// A name that is being edited has the keyboard for itself.
bool MainDialog::IsNameEditor(HWND control) const {
    char className[16] = {};
    GetClassNameA(control, className, sizeof className);
    return LEqualNoCase(className, "Edit") && control != Item(IDC_NOTES);
}

// A key that winds does so while it is held.
bool MainDialog::WindByKey(const MSG& message) {
    const bool isDown = message.message == WM_KEYDOWN;
    if (!isDown && message.message != WM_KEYUP) return false;
    if (message.wParam != VK_F7 && message.wParam != VK_F8) return false;
    if (message.hwnd != Window() && !IsChild(Window(), message.hwnd)) return false;
    const bool repeats = isDown && (message.lParam & kKeyWasDown) != 0;
    if (isDown && !repeats && !IsNameEditor(message.hwnd) && BeginCommand()) {
        m_windKey = message.wParam;
        m_transport.BeginWinding(DirectionOfKey(m_windKey));
    } else if (!isDown && m_windKey == message.wParam) {
        ReleaseWindKey();
    }
    return true;
}

void MainDialog::ReleaseWindKey() {
    if (const WPARAM key = std::exchange(m_windKey, 0)) m_transport.EndWinding(DirectionOfKey(key));
}

// ---- Messages --------------------------------------------------------------------------------------------

bool MainDialog::HandleMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) {
    for (const MessageEntry& entry : kMessages)
        if (entry.message == message) return (this->*entry.handle)(wParam, lParam, result);
    return false;  // not ours: default handling
}

bool MainDialog::EvClose(WPARAM, LPARAM, LRESULT& result) {
    result = 0;
    if (LProgressDialog::IsAnyRunning()) {
        m_closeWanted = true;  // as soon as the process has ended
        LProgressDialog::CancelRunning();
    } else {
        CloseWindow();
    }
    return true;
}

bool MainDialog::MayGoOn() {
    if (m_closeWanted && IsOpen()) PostMessageA(Window(), WM_CLOSE, 0, 0);
    return IsOpen() && !m_closeWanted;
}

bool MainDialog::EvQueryEndSession(WPARAM, LPARAM, LRESULT& result) {
    result = TRUE;
    return true;
}

// The session ends, and the process may be ended as soon as this returns.
bool MainDialog::EvEndSession(WPARAM wParam, LPARAM, LRESULT& result) {
    result = 0;
    if (wParam != FALSE && LProgressDialog::IsAnyRunning()) {
        SaveNotes();
        EvClose(0, 0, result);
    } else if (wParam != FALSE) {
        CloseWindow();
    }
    return true;
}

bool MainDialog::EvCommand(WPARAM wParam, LPARAM, LRESULT& result) {
    const int command = LOWORD(wParam);
    const int notification = HIWORD(wParam);
    result = 0;
    if (command == IDC_NOTES) {
        if (notification == EN_CHANGE) m_notes.EvChange();
        return true;
    }
    const bool isFromMenuButtonOrKey = notification == 0 || notification == 1;
    if (isFromMenuButtonOrKey && BeginCommand() && IsCommandEnabled(command, Situation()))
        RunCommand(command);
    return true;
}

bool MainDialog::EvContextMenu(WPARAM wParam, LPARAM lParam, LRESULT& result) {
    if (reinterpret_cast<HWND>(wParam) != Item(IDC_LIST)) return false;
    POINT at = {GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
    if (at.x == -1 && at.y == -1) {  // from the keyboard
        RECT box;
        GetWindowRect(Item(IDC_LIST), &box);
        at = {box.left + 16, box.top + 32};
    }
    ShowPopup(IDM_DICTATION, at);
    result = 0;
    return true;
}

void MainDialog::ShowPopup(int resource, POINT at) {
    const HMENU menu = LoadMenuA(LInstance(), MAKEINTRESOURCEA(resource));
    if (menu == nullptr) return;
    const HMENU popup = GetSubMenu(menu, 0);
    EnableCommands(popup);
    TrackPopupMenu(popup, TPM_RIGHTBUTTON, at.x, at.y, 0, Window(), nullptr);
    DestroyMenu(menu);
}

bool MainDialog::EvDrawItem(WPARAM, LPARAM lParam, LRESULT& result) {
    const auto& item = *reinterpret_cast<const DRAWITEMSTRUCT*>(lParam);
    if (item.CtlType != ODT_BUTTON) return false;
    const int control = static_cast<int>(item.CtlID);
    DrawTransportButton(item, IsHeld(control), control == IDC_RECORD && m_showsInsert);
    result = TRUE;
    return true;
}

bool MainDialog::EvGetMinMaxInfo(WPARAM, LPARAM lParam, LRESULT& result) {
    m_layout.EvGetMinMaxInfo(*reinterpret_cast<MINMAXINFO*>(lParam));
    result = 0;
    return true;
}

bool MainDialog::EvActivate(WPARAM wParam, LPARAM, LRESULT&) {
    // The key that is held comes up in another window, unseen.
    if (LOWORD(wParam) == WA_INACTIVE) ReleaseWindKey();
    return false;
}

// Nor is it seen in the loops that the platform runs while a menu is open or the window is dragged.
bool MainDialog::EvMenuLoop(WPARAM, LPARAM, LRESULT&) {
    ReleaseWindKey();
    return false;
}

bool MainDialog::EvHoldButton(WPARAM wParam, LPARAM lParam, LRESULT& result) {
    const WindDirection direction = wParam == IDC_REWIND ? WindDirection::Back : WindDirection::Forward;
    result = 0;
    if (lParam == 0)
        m_transport.EndWinding(direction);
    else if (BeginCommand())
        m_transport.BeginWinding(direction);
    return true;
}

bool MainDialog::EvDrag(WPARAM, LPARAM, LRESULT& result) {
    ReleaseWindKey();
    m_layout.EvDrag(true);
    result = 0;
    return true;
}

bool MainDialog::EvDragEnd(WPARAM, LPARAM, LRESULT& result) {
    m_layout.EvDrag(false);
    result = 0;
    return true;
}

bool MainDialog::EvMove(WPARAM, LPARAM, LRESULT& result) {
    m_layout.EvMove();
    result = 0;
    return true;
}

bool MainDialog::EvSize(WPARAM wParam, LPARAM, LRESULT& result) {
    if (wParam != SIZE_MINIMIZED) {
        m_layout.LayoutControls();
        m_list.ShowCurrent();
    }
    result = 0;
    return true;
}

bool MainDialog::EvNotify(WPARAM, LPARAM lParam, LRESULT& result) {
    const auto& header = *reinterpret_cast<const NMHDR*>(lParam);
    return header.idFrom == IDC_LIST && m_list.HandleNotify(header, result);
}

bool MainDialog::EvSendProgress(WPARAM, LPARAM, LRESULT& result) {
    const int percent = static_cast<int>(m_queue.GetProgress() * 100 + 0.5);
    SendMessageA(Item(IDC_SENDPROGRESS), PBM_SETPOS, static_cast<WPARAM>(percent), 0);
    result = 0;
    return true;
}

bool MainDialog::BeginCommand() {
    if (!IsOpen() || m_isClosing || LProgressDialog::IsAnyRunning()) return false;
    if (m_selectionMoved) FileChanged();
    return true;
}

bool MainDialog::EvSelectionMoved(WPARAM, LPARAM, LRESULT& result) {
    if (m_selectionMoved) FileChanged();
    result = 0;
    return true;
}

bool MainDialog::EvRowChanged(WPARAM, LPARAM, LRESULT& result) {
    ApplyRowChanges();
    result = 0;
    return true;
}

void MainDialog::ApplyRowChanges() {
    if (m_list.IsRenaming()) return;  // AfterRename comes back here
    for (int32_t number : std::exchange(m_changedRows, {})) m_list.UpdateNumber(number);
    ShowPosition();
}

bool MainDialog::EvTransportTrouble(WPARAM, LPARAM, LRESULT& result) {
    result = 0;
    for (const std::string& text : std::exchange(m_troubles, {}))
        if (IsOpen()) LMessageBox(Window(), text, "Error", MB_OK | MB_ICONEXCLAMATION);
    return true;
}

bool MainDialog::EvTimer(WPARAM wParam, LPARAM, LRESULT& result) {
    KillTimer(Window(), wParam);
    result = 0;
    for (const TimerEntry& entry : kTimers)
        if (entry.timer == wParam) (this->*entry.handle)();
    return true;
}

void MainDialog::EvTimerInfoLine() {
    LSetWindowText(Item(IDC_INFOLINE), kInfoTexts[m_infoText]);
    m_infoText = (m_infoText + 1) % std::size(kInfoTexts);
    ShowSendError();
    if (IsOpen()) SetTimer(Window(), TIMER_INFOLINE, kInfoPeriodMs, nullptr);
}

void MainDialog::ShowSendError() {
    // Who records or plays presses Escape to stop; here it would empty the queue. The text waits.
    if (m_transport.IsRunning() || LProgressDialog::IsAnyRunning()) return;
    const std::string text = m_queue.TakeError();
    if (text.empty()) return;
    if (LMessageBox(Window(), text, "Error", MB_OKCANCEL | MB_ICONEXCLAMATION) == IDCANCEL && IsOpen())
        m_queue.ClearQueue();
}

void MainDialog::EvTimerSaveNotes() {
    SaveNotes();
}

// ---- What the window shows -------------------------------------------------------------------------------

CommandSituation MainDialog::Situation() const {
    return {m_list.SelectedCount(), m_list.Current() && m_transport.LengthMs() > 0, m_transport.IsRecording(),
            m_transport.IsRunning() && !m_transport.IsRecording()};
}

void MainDialog::EnableCommands(HMENU menu) const {
    const CommandSituation situation = Situation();
    for (int i = GetMenuItemCount(menu) - 1; i >= 0; --i) {
        if (const HMENU sub = GetSubMenu(menu, i)) EnableCommands(sub);
        const UINT command = GetMenuItemID(menu, i);
        if (command == 0 || command == static_cast<UINT>(-1)) continue;
        EnableMenuItem(
            menu, command,
            MF_BYCOMMAND | (IsCommandEnabled(static_cast<int>(command), situation) ? MF_ENABLED : MF_GRAYED));
    }
}

void MainDialog::ShowSituation() {
    const CommandSituation situation = Situation();
    EnableCommands(GetMenu(Window()));
    for (int control : {IDC_NEW, IDC_SEND, IDC_PLAY, IDC_RECORD, IDC_STOP, IDC_GOTOSTART, IDC_REWIND,
                        IDC_FASTFORWARD, IDC_GOTOEND, IDC_DOCK}) {
        const bool enabled = IsCommandEnabled(control, situation);
        // The keyboard must not be left with a control that no longer listens. After Stop the next press of the
        // space bar plays: it must not record over the place that was just heard.
        if (!enabled && GetFocus() == Item(control))
            SetFocus(Item(IsCommandEnabled(IDC_PLAY, situation) ? IDC_PLAY : IDC_RECORD));
        EnableWindow(Item(control), enabled);
    }
    ShowPosition();
}

// Whether a transport button stays pressed, since what it began goes on.
bool MainDialog::IsHeld(int control) const {
    switch (control) {
        case IDC_RECORD:
            return m_transport.IsRecording();
        case IDC_PLAY:
            return m_transport.IsPlaying();
        case IDC_REWIND:
            return m_transport.IsWinding(WindDirection::Back);
        case IDC_FASTFORWARD:
            return m_transport.IsWinding(WindDirection::Forward);
        default:
            return false;
    }
}

void MainDialog::ShowIcon(int resource) {
    const LIcon(&icons)[2] = m_icons[resource == IDI_RECORDING ? 1 : 0];
    SendMessageA(Window(), WM_SETICON, ICON_BIG, reinterpret_cast<LPARAM>(icons[0].Get()));
    SendMessageA(Window(), WM_SETICON, ICON_SMALL, reinterpret_cast<LPARAM>(icons[1].Get()));
}

// What runs, in front of the dictation's name.
const char* MainDialog::Doing() const {
    if (m_transport.IsRecording()) return m_transport.IsWaiting() ? "Listening: " : "Recording: ";
    if (m_transport.IsPlaying()) return "Playing: ";
    if (m_transport.IsWinding(WindDirection::Back)) return "Rewinding: ";
    return m_transport.IsWinding() ? "Winding: " : "";
}

void MainDialog::ShowPosition() {
    if (!m_list.Current()) {
        LSetWindowText(Item(IDC_DICTATIONNAME), "No dictation selected");
        LSetWindowText(Item(IDC_POSITION), "");
        return;
    }
    LSetWindowText(Item(IDC_DICTATIONNAME), Doing() + m_list.CurrentName());
    const int32_t position = m_transport.PositionMs();
    const int32_t length = std::max(position, m_transport.LengthMs());
    LSetWindowText(Item(IDC_POSITION), FormatDuration(position) + " / " + FormatDuration(length));
}

// ---- Notifications ---------------------------------------------------------------------------------------

void MainDialog::FileChanged() {
    m_selectionMoved = false;
    const std::optional<DictationFiles> current = m_list.Current();
    const LPath notes = current ? current->notes : LPath();
    if (!(m_notes.File() == notes)) {
        FinishRunning();
        SaveNotes();
        if (notes.Empty() && GetFocus() == Item(IDC_NOTES)) SetFocus(Item(IDC_RECORD));
        m_notes.Load(notes);
        m_transport.SetDictation(current);
    }
    ShowSituation();
}

void MainDialog::SelectionMoved() {
    if (!std::exchange(m_selectionMoved, true)) PostMessageA(Window(), WM_SELECTIONMOVED, 0, 0);
}

void MainDialog::PlayFromStart() {
    if (BeginCommand()) m_transport.PlayFromStart();
}

void MainDialog::BeforeRename() {
    FinishRunning();
    SaveNotes();
}

void MainDialog::AfterRename(int32_t number) {
    // The row is made anew only after the list has closed its editor.
    m_changedRows.push_back(number);
    PostMessageA(Window(), WM_ROWCHANGED, 0, 0);
}

std::optional<DictationFiles> MainDialog::DictationToRecord() {
    if (!m_list.Current() && !CreateDictation()) return std::nullopt;
    return m_list.Current();
}

void MainDialog::ActivityChanged() {
    if (!IsOpen()) return;
    if (m_transport.IsRecording() != m_showsRecordingIcon) {
        m_showsRecordingIcon = m_transport.IsRecording();
        ShowIcon(m_showsRecordingIcon ? IDI_RECORDING : IDI_CORVANE);
    }
    for (int control : {IDC_RECORD, IDC_PLAY, IDC_REWIND, IDC_FASTFORWARD})
        InvalidateRect(Item(control), nullptr, FALSE);
    for (int control : {IDC_LEVEL_LEFT, IDC_LEVEL_RIGHT})
        EnableWindow(Item(control), m_transport.IsRunning());
    ShowSituation();
}

void MainDialog::RecordingStopped(const DictationFiles& files) {
    if (IsOpen()) PostRowChanged(files);
}

void MainDialog::ShowFocus() {
    SetFocus(Item(m_layout.View() == ViewMode::Compact ? IDC_RECORD : IDC_LIST));
}

void MainDialog::LevelChanged(int8_t leftDb, int8_t rightDb) {
    LDBDisplaySetLevel(Item(IDC_LEVEL_LEFT), leftDb);
    LDBDisplaySetLevel(Item(IDC_LEVEL_RIGHT), rightDb);
}

void MainDialog::TransportTrouble(const std::string& text) {
    // It may come from inside another command or a mouse click; the message waits until that has run.
    m_troubles.push_back(text);
    PostMessageA(Window(), WM_TRANSPORTTROUBLE, 0, 0);
}

void MainDialog::PostSendProgress() {
    if (const HWND window = m_postTo.load()) PostMessageA(window, WM_SENDPROGRESS, 0, 0);
}
