#include "app/window/MainDialog_win.h"

#include <mmsystem.h>
#include <windowsx.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>

#include "app/dialogs/IntroductionPages_win.h"
#include "app/window/HoldButton_win.h"
#include "base/LText.h"
#include "base/LTime.h"
#include "base/LTrace.h"
#include "res/Ids.h"
#include "store/SettingsKeys.h"

// Dispatch. Messages and timers are tables of member functions, each searched by one loop; a message that is
// not in its table gets the default handling. Commands have a table and a file of their own
// (MainDialogCommands_win.cpp).
// Modal code. Boxes, dialogs and processes run messages, so any of them can return into a window that is
// closing or destroyed; every caller tests MayGoOn or IsOpen afterwards.
// Start. The window is shown and painted before anything slow begins (repair, filling the list, deleting old
// dictations); commands are permitted when the list is filled. Sending starts after the repair, because the
// repair asks the queue about the dictations that it finds.
// End. DestroyDialog stops the send thread, the transport and the notes in this order, for every way in which
// the window can end.

namespace {

// The timer of the information line also retries unsaved notes and unreadable rows and shows errors of
// sending.
constexpr UINT kInfoFirstMs = 1000;
constexpr UINT kInfoPeriodMs = 5000;
constexpr UINT kRestLookMs = 250;
constexpr UINT kSendShownMs = 100;
constexpr UINT kToneFirstMs = 150;  // after a stop
constexpr UINT kTonePeriodMs = 7000;
constexpr UINT kAppCommand = 0x0319;    // WM_APPCOMMAND, of media keys
constexpr UINT kDeviceChange = 0x0219;  // WM_DEVICECHANGE
constexpr UINT kDevicesMs = 1000;  // a device that is plugged in is told several times, and starts slowly
constexpr uint32_t kSendStopMs = 5000;
constexpr char kQueueFile[] = "bgsend.dat";
constexpr char kNotAllListed[] =
    "Not all dictations are listed.\n\nNone is lost: the others are listed when Corvane is started again.";
constexpr char kLoseNotes[] =
    "The notes of \"%.80s\" could not be saved. The disk might be full or write-protected.\n\n"
    "Do you want to close Corvane and lose what you typed?";

}  // namespace

// In the order of the message numbers. The function tells whether the message is handled, and its result.
const MainDialog::AskedEntry MainDialog::kAsked[] = {
    {WM_ACTIVATE, &MainDialog::EvActivate},       {WM_QUERYENDSESSION, &MainDialog::EvQueryEndSession},
    {WM_DRAWITEM, &MainDialog::EvDrawItem},       {WM_NOTIFY, &MainDialog::EvNotify},
    {WM_CONTEXTMENU, &MainDialog::EvContextMenu}, {WM_INITMENUPOPUP, &MainDialog::EvInitMenuPopup},
    {WM_ENTERMENULOOP, &MainDialog::EvMenuLoop},  {WM_EXITMENULOOP, &MainDialog::EvMenuLoopEnd},
    {kDeviceChange, &MainDialog::EvDeviceChange}, {kAppCommand, &MainDialog::EvAppCommand},
    {WM_APICOMMAND, &MainDialog::EvAPICommand},
};

// The same for messages that are answered with 0.
const MainDialog::MessageEntry MainDialog::kMessages[] = {
    {WM_MOVE, &MainDialog::EvMove},
    {WM_SIZE, &MainDialog::EvSize},
    {WM_CLOSE, &MainDialog::EvClose},
    {WM_ENDSESSION, &MainDialog::EvEndSession},
    {WM_SYSCOLORCHANGE, &MainDialog::EvColoursChanged},
    {WM_GETMINMAXINFO, &MainDialog::EvGetMinMaxInfo},
    {WM_HELP, &MainDialog::EvHelp},
    {WM_COMMAND, &MainDialog::EvCommand},
    {WM_TIMER, &MainDialog::EvTimer},
    {WM_ENTERSIZEMOVE, &MainDialog::EvDrag},
    {WM_EXITSIZEMOVE, &MainDialog::EvDragEnd},
    {WM_HOTKEY, &MainDialog::EvHotKey},
    {WM_SENDPROGRESS, &MainDialog::EvSendProgress},
    {WM_DOCKREQUEST, &MainDialog::EvDockRequest},
    {WM_MICBUTTON, &MainDialog::EvSpeechMikeControl},
    {WM_SHOWLATER, &MainDialog::EvShowLater},
    {WM_ROWCHANGED, &MainDialog::EvRowChanged},
    {WM_SELECTIONMOVED, &MainDialog::EvSelectionMoved},
    {WM_INSERTKEPT, &MainDialog::EvInsertKept},
    {WM_HELPNOTSHOWN, &MainDialog::EvHelpNotShown},
    {WM_MICLOST, &MainDialog::EvMicLost},
    {WM_HOLDBUTTON, &MainDialog::EvHoldButton},
};

const MainDialog::TimerEntry MainDialog::kTimers[] = {
    {TIMER_INFOLINE, &MainDialog::EvTimerInfoLine},       {TIMER_SAVENOTES, &MainDialog::EvTimerSaveNotes},
    {TIMER_HARDWARE, &MainDialog::EvTimerHardware},       {TIMER_HOTKEY, &MainDialog::EvTimerHotKey},
    {TIMER_STOPPEDTONE, &MainDialog::EvTimerStoppedTone}, {TIMER_SHOWLATER, &MainDialog::EvTimerShowLater},
    {TIMER_SENDSHOWN, &MainDialog::EvTimerSendShown},     {TIMER_DEVICES, &MainDialog::EvTimerDevices},
};

MainDialog::MainDialog(AppState& state)
    : m_state(state),
      m_list(m_current),
      m_transport(state, m_current, m_runner, *this),
      m_inserts(state, m_runner, m_list, m_transport),
      m_dictations(state, m_runner, m_queue, m_list, m_notes, m_transport, m_current, m_inserts),
      m_import(state, m_runner, *this),
      m_sent(state, m_runner, m_queue, m_list, m_notes, m_transport, m_current),
      m_dock(state, m_runner, m_dictations, m_list, m_transport, m_listening,
             [this](const LPath& file, bool& sends) { return m_import.Load(file, sends); }),
      m_devices(*this),
      m_hotKeys(state, m_devices),
      m_pedals(state, m_devices, m_runner),
      m_api(*this),
      m_keyboard(*this),
      m_layout(state),
      m_display(m_list, m_transport, m_current),
      m_introduction(kIntroductionPages) {}

MainDialog::~MainDialog() = default;

// ---- Life ------------------------------------------------------------------------------------------------

bool MainDialog::InitDialog() {
    m_postTo = Window();
    m_isSendPosted = false;
    if (m_onCreated) m_onCreated();
    _putenv("TZ=GMT0");  // dates are stored and shown without a time-zone shift
    _tzset();
    // The splash screen would cover a box.
    m_runner.Attach(
        Window(), WM_SHOWLATER, [this] { m_transport.Stop(); }, [this] { m_splash.Close(); });
    for (int control : {IDC_REWIND, IDC_FASTFORWARD, IDC_RECORD}) AttachHoldButton(Item(control));
    m_keyboard.Attach(Window());
    m_help.Attach(Window());
    m_dock.Attach(Window());
    m_layout.Attach(Window());
    m_layout.LayoutNormalSizeAndPosition();
    m_display.Attach(Window(), ShownUserName(m_state.user.details, m_state.user.number));
    m_notes.Attach(Item(IDC_NOTES), Window(), *this);
    m_list.Attach(Item(IDC_LIST), *this);
    m_display.ShowRecordMode(DefaultRecordMode());
    m_display.ShowPlaySpeed(m_transport.PlaySpeedNow());
    SetTimer(Window(), TIMER_INFOLINE, kInfoFirstMs, nullptr);
    FollowSelection();
    ShowWindow(Window(), m_layout.View() == ViewMode::Maximized ? SW_SHOWMAXIMIZED : SW_SHOWNORMAL);
    RedrawWindow(Window(), nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
    m_queue.SetQueuePath(LPath::Join(m_state.data.folder.View(), kQueueFile));
    TakeUserFolder();
    if (!FillList()) return false;
    m_queue.SetOwner(this);
    m_queue.StartSending();
    m_pedals.Start(Window());
    m_hotKeys.RegisterHotKeys(Window());
    m_microphone.Open(Window(), WM_MICLOST);
    if (m_state.showIntroduction)
        m_introduction.Show(Window());
    else
        m_splash.Show(Window());
    LookAfterUser();
    if (!IsOpen()) return false;
    RepeatStoppedTone();
    LTrace("MainDialog::InitDialog done, ms:",
           LFormat("%lu", static_cast<unsigned long>(LTickMs() - m_startTick)));
    if (IsOpen()) m_display.FocusHome();
    return false;
}

// False when the window is about to close.
bool MainDialog::FillList() {
    LoadDictations process(m_list, m_state.user.currentFolder);
    const ProcessResult result = m_runner.RunProcess(process, "Loading Dictations");
    m_dock.HideRow();
    if (result == ProcessResult::Stopped)
        m_runner.Box(kNotAllListed, "Loading Dictations", MB_OK | MB_ICONINFORMATION);
    if (m_runner.MayGoOn()) FollowSelection();  // again: commands are permitted now
    return m_runner.MayGoOn();
}

void MainDialog::CloseWindow() {
    if (m_isClosing) return;
    m_isClosing = true;
    m_transport.LeaveInserts(true);
    m_dock.Finish();
    m_transport.Stop();
    m_notes.Save();  // at once: a session that ends does not wait for the send thread
    DestroyWindow(Window());
}

// Stops everything that calls back into the window, however the window came to its end.
void MainDialog::DestroyDialog() {
    KillTimer(Window(), TIMER_INFOLINE);
    m_isClosing = true;
    m_microphone.Close();
    m_hotKeys.UnregisterHotKeys();
    m_pedals.Stop();
    m_transport.LeaveInserts(true);
    m_display.Detach();
    m_sent.RequestStopCollecting();
    SetWindowTextA(Window(), "");  // who starts the program now must not be led to this hidden window
    m_sendThreadEnded = m_queue.Stop(kSendStopMs);
    m_postTo = nullptr;
    m_transport.Stop();
    m_notes.Save();
    // Whoever starts the program again now is the first session of this user.
    if (m_sendThreadEnded) m_inUse.Release();
    m_sendThreadEnded = m_sent.StopCollecting(kSendStopMs) && m_sendThreadEnded;
    m_runner.Detach();
    m_list.ReleaseFont();
}

bool MainDialog::PreTranslateMessage(MSG& message) {
    const bool isKey = message.message == WM_KEYDOWN || message.message == WM_SYSKEYDOWN;
    if (isKey || message.message == WM_LBUTTONDOWN) m_runner.NoteInput();
    m_display.Watch(message);
    if (IsBesideRows(message)) return true;
    return m_keyboard.PreTranslateMessage(message) || m_dock.PreTranslateMessage(message) ||
           m_introduction.PreTranslateMessage(message);
}

// ---- Messages --------------------------------------------------------------------------------------------

bool MainDialog::HandleMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) {
    for (const AskedEntry& entry : kAsked)
        if (entry.message == message) return (this->*entry.handle)(wParam, lParam, result);
    for (const MessageEntry& entry : kMessages) {
        if (entry.message != message) continue;
        result = 0;
        (this->*entry.handle)(wParam, lParam);
        return true;
    }
    return false;  // not ours: default handling
}

void MainDialog::EvClose(WPARAM, LPARAM) {
    if (m_isClosing || !m_runner.TakeClose()) return;
    m_transport.LeaveInserts(true);
    if (MayClose()) {
        m_dock.Finish();
        if (m_dictations.TellSendErrorAtClose()) CloseWindow();
    }
    m_transport.LeaveInserts(m_isClosing);
}

// False when the user keeps notes that could not be saved, or a box that may ask the same is open.
bool MainDialog::MayClose() {
    m_notes.Save();
    if (m_notes.Unsaved().Empty()) return true;
    if (m_runner.OpenModal() != LModalRunner::Modal::Nothing)
        return false;  // the same question, or a box before it
    const std::string name = m_list.NameOf(DictationFiles::OfPath(m_notes.Unsaved().First()).record);
    const int answer = m_runner.Box(LFormat(kLoseNotes, name.c_str()), "Notes Not Saved",
                                    MB_YESNO | MB_ICONEXCLAMATION | MB_DEFBUTTON2);
    return answer == IDYES && IsOpen();
}

bool MainDialog::EvQueryEndSession(WPARAM, LPARAM, LRESULT& result) {
    result = TRUE;
    return true;
}

// The session ends; the process may be terminated as soon as this returns, so the notes are saved first.
void MainDialog::EvEndSession(WPARAM wParam, LPARAM) {
    if (wParam == FALSE) return;
    m_notes.Save();
    if (m_runner.TakeClose()) CloseWindow();
}

void MainDialog::EvCommand(WPARAM wParam, LPARAM lParam) {
    const int command = LOWORD(wParam);
    const int notification = HIWORD(wParam);
    if (command == IDC_NOTES) {
        if (notification == EN_CHANGE) m_notes.EvChange();
        return;
    }
    // That the record button was pressed has been told already (EvHoldButton).
    if (command == IDC_RECORD && lParam != 0) return;
    const bool isFromMenuButtonOrKey = notification == 0 || notification == 1;
    if (isFromMenuButtonOrKey) Give(command);
}

bool MainDialog::EvContextMenu(WPARAM wParam, LPARAM lParam, LRESULT& result) {
    if (reinterpret_cast<HWND>(wParam) != Item(IDC_LIST)) return false;
    POINT at = {GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
    if (at.x == -1 && at.y == -1) {  // from the keyboard
        at = m_list.MenuPlace();
    }
    m_display.ShowPopup(IDM_DICTATION, at, Situation());
    result = 0;
    return true;
}

bool MainDialog::EvDrawItem(WPARAM, LPARAM lParam, LRESULT& result) {
    const auto& item = *reinterpret_cast<const DRAWITEMSTRUCT*>(lParam);
    if (item.CtlType != ODT_BUTTON && item.CtlType != ODT_STATIC) return false;
    m_display.DrawItem(item);
    result = TRUE;
    return true;
}

void MainDialog::EvGetMinMaxInfo(WPARAM, LPARAM lParam) {
    m_layout.EvGetMinMaxInfo(*reinterpret_cast<MINMAXINFO*>(lParam));
}

bool MainDialog::EvActivate(WPARAM wParam, LPARAM, LRESULT&) {
    if (LOWORD(wParam) == WA_INACTIVE) m_keyboard.ReleaseHeld();
    return false;
}

bool MainDialog::EvMenuLoop(WPARAM, LPARAM, LRESULT&) {
    m_keyboard.ReleaseHeld();
    m_isMenuOpen = true;
    return false;
}

bool MainDialog::EvMenuLoopEnd(WPARAM, LPARAM, LRESULT&) {
    m_isMenuOpen = false;
    m_runner.NoteInput();
    PostMessageA(Window(), WM_SHOWLATER, 0, 0);
    return false;
}

void MainDialog::EvSpeechMikeControl(WPARAM wParam, LPARAM) {
    m_devices.MicButton(LOWORD(wParam));
}

bool MainDialog::EvDeviceChange(WPARAM, LPARAM, LRESULT&) {
    SetTimer(Window(), TIMER_DEVICES, kDevicesMs, nullptr);
    return false;
}

void MainDialog::EvTimerDevices() {
    m_pedals.Renew();
    if (!m_microphone.Renew(m_devices.IsMicHeld())) SetTimer(Window(), TIMER_DEVICES, kDevicesMs, nullptr);
}

bool MainDialog::EvAPICommand(WPARAM wParam, LPARAM lParam, LRESULT& result) {
    result = m_api.Answer(wParam, lParam);
    return true;
}

void MainDialog::EvDrag(WPARAM, LPARAM) {
    m_keyboard.ReleaseHeld();
    m_layout.EvDrag(true);
}

void MainDialog::EvDragEnd(WPARAM, LPARAM) {
    m_layout.EvDrag(false);
}

void MainDialog::EvMove(WPARAM, LPARAM) {
    m_layout.EvMove();
}

void MainDialog::EvSize(WPARAM wParam, LPARAM) {
    if (wParam == SIZE_MINIMIZED) return;
    if (const std::optional<ViewMode> view = m_layout.WantedView(wParam)) SetView(*view);
    m_layout.LayoutControls();
    m_display.EvPlaced();
    m_list.FitColumns();
    m_list.ShowCurrent();
}

bool MainDialog::EvNotify(WPARAM, LPARAM lParam, LRESULT& result) {
    const auto& header = *reinterpret_cast<const NMHDR*>(lParam);
    if (header.code == TTN_NEEDTEXTA) return AskTip(header, result);
    const bool isOfHeader = GetParent(header.hwndFrom) == Item(IDC_LIST);
    if (isOfHeader) return m_list.HandleNotify(header, result);
    return header.idFrom == IDC_LIST && m_list.HandleNotify(header, result);
}

bool MainDialog::AskTip(const NMHDR& header, LRESULT& result) {
    m_tip = m_display.TipOf(reinterpret_cast<HWND>(header.idFrom));
    auto& asked = *reinterpret_cast<NMTTDISPINFOA*>(const_cast<NMHDR*>(&header));
    asked.lpszText = m_tip.data();
    result = 0;
    return true;
}

// A click beside the rows keeps the selection, and with it the current dictation; the list would drop both.
bool MainDialog::IsBesideRows(const MSG& message) {
    const bool isLeft = message.message == WM_LBUTTONDOWN || message.message == WM_LBUTTONDBLCLK;
    const bool isRight = message.message == WM_RBUTTONDOWN || message.message == WM_RBUTTONUP;
    POINT at = {GET_X_LPARAM(message.lParam), GET_Y_LPARAM(message.lParam)};
    if (message.hwnd != Item(IDC_LIST) || (!isLeft && !isRight) || !m_list.IsBesideRows(at)) return false;
    if (m_list.Count() > 0) SetFocus(Item(IDC_LIST));
    ClientToScreen(message.hwnd, &at);
    if (message.message == WM_RBUTTONUP)
        SendMessageA(Window(), WM_CONTEXTMENU, reinterpret_cast<WPARAM>(message.hwnd),
                     MAKELPARAM(at.x, at.y));
    return true;
}

// The same way as for other sources of commands; keys that are not ours go to the platform.
bool MainDialog::EvAppCommand(WPARAM, LPARAM lParam, LRESULT& result) {
    const int key = HIWORD(lParam) & 0x7FFF;
    const int command = MediaCommandOf(key, m_transport.IsWinding(WindDirection::Back),
                                       m_transport.IsWinding(WindDirection::Forward));
    if (command == 0) return false;
    result = TRUE;
    // A held key repeats, and its command stops what it has started.
    UINT delay = 0;  // 0 to 3: 250 to 1000 ms until the first repeat, roughly
    SystemParametersInfoA(SPI_GETKEYBOARDDELAY, 0, &delay, 0);
    const bool isOther = std::exchange(m_mediaKey, key) != key;
    const bool isNew = m_mediaPress.IsNew(GetTickCount(), (delay + 1) * 250 + 100) || isOther;
    if (isNew || key == APPCOMMAND_MEDIA_STOP) Give(command);
    return true;
}

bool MainDialog::EvInitMenuPopup(WPARAM wParam, LPARAM, LRESULT&) {
    m_display.ShowPriority(reinterpret_cast<HMENU>(wParam));
    return false;
}

void MainDialog::EvColoursChanged(WPARAM, LPARAM) {
    m_list.EvColoursChanged();
    m_display.EvColoursChanged();
}

// What the thread does next is shown a moment later: drawing each step of forty small dictations a second
// would cost the thread a third of its speed, and nobody could read it.
void MainDialog::EvSendProgress(WPARAM, LPARAM) {
    m_display.ShowSending(m_queue.Activity(), m_queue.GetProgress());
    SetTimer(Window(), TIMER_SENDSHOWN, kSendShownMs, nullptr);
}

void MainDialog::EvTimerSendShown() {
    m_isSendPosted = false;
    m_display.ShowSending(m_queue.Activity(), m_queue.GetProgress());
}

// F1. Controls, dialogs and boxes pass it on to the window that owns them, and so in the end to this one.
void MainDialog::EvHelp(WPARAM, LPARAM) {
    if (m_help.EvKey() && !m_list.IsRenaming()) Give(CM_HELP);
}

void MainDialog::EvHelpNotShown(WPARAM wParam, LPARAM) {
    const std::string text = Help::TextOf(wParam);
    if (IsHandBusy() || m_runner.OpenModal() == LModalRunner::Modal::Process)
        m_runner.TellLater(text);
    else
        m_runner.Tell(text);
}

void MainDialog::EvSelectionMoved(WPARAM, LPARAM) {
    SettleSelection();
}

void MainDialog::EvRowChanged(WPARAM, LPARAM) {
    m_list.UpdateNoted();
    if (!m_list.IsRenaming() && std::exchange(m_wasTyping, false)) SetFocus(Item(IDC_NOTES));
    m_dictations.DropGone(m_list.TakeAbsent());
    m_display.ShowPosition();
}

// Asked at once where nothing is in the way, else by the timer of the information line.
void MainDialog::EvInsertKept(WPARAM, LPARAM) {
    const bool isFree = m_runner.OpenModal() == LModalRunner::Modal::Nothing && !IsHandBusy();
    if (isFree && m_inserts.AnyLater() && !m_transport.IsRunning()) m_inserts.OfferThoseLater();
}

// Menu and name editor post this message again at their end; texts that wait for the hand to rest are looked
// after by a timer.
void MainDialog::EvShowLater(WPARAM, LPARAM) {
    if (!IsProcessRunning()) m_devices.PressAgain();
    if (!IsHandBusy()) m_dock.Settle();
    if (!IsHandBusy() && m_runner.ShowLater()) SetTimer(Window(), TIMER_SHOWLATER, kRestLookMs, nullptr);
}

void MainDialog::EvTimer(WPARAM wParam, LPARAM) {
    KillTimer(Window(), wParam);
    for (const TimerEntry& entry : kTimers)
        if (entry.timer == wParam) (this->*entry.handle)();
}

void MainDialog::EvTimerInfoLine() {
    m_display.ShowNextInfo();
    if (!m_notes.Unsaved().Empty()) m_notes.Save();  // retry: the disk may have room again
    if (!IsHandBusy() && m_runner.OpenModal() != LModalRunner::Modal::Process) m_list.ReloadUnreadable();
    m_sent.CollectReports();
    m_microphone.Retry();
    // Escape closes the introduction; in the box it would empty the queue.
    if (!IsHandBusy() && !m_introduction.IsOpen()) m_dictations.ShowSendError();
    if (IsOpen() && m_runner.IsHandAtRest()) EvInsertKept(0, 0);
    if (IsOpen() && !IsHandBusy()) m_dock.Settle();
    if (IsOpen()) SetTimer(Window(), TIMER_INFOLINE, kInfoPeriodMs, nullptr);
}

// Tells a user who does not look that nothing runs any more.
void MainDialog::EvTimerStoppedTone() {
    const LPath& settings = m_state.data.settingsFile;
    if (!IsRunning() && !m_dock.IsListening() && Settings::Read(settings, SettingsKeys::kStoppedTone))
        PlaySoundA(MAKEINTRESOURCEA(IDW_STOPPEDTONE), LInstance(), SND_RESOURCE | SND_ASYNC | SND_NODEFAULT);
    RepeatStoppedTone();
}

void MainDialog::RepeatStoppedTone() {
    if (Settings::Read(m_state.data.settingsFile, SettingsKeys::kStoppedToneRepeat))
        SetTimer(Window(), TIMER_STOPPEDTONE, kTonePeriodMs, nullptr);
}

// ---- The current dictation -------------------------------------------------------------------------------

// Makes the dictation that the selection asks for the current one. The transport is stopped and the notes are
// saved before the change, since both belong to the dictation before.
void MainDialog::FollowSelection() {
    m_selectionMoved = false;
    if (!m_current.Is(m_current.Choose(m_list))) {
        m_transport.Stop();
        m_notes.Save();
        if (!IsOpen()) return;
        m_current.Set(m_current.Choose(m_list));  // chosen again: stopping may have run messages
        const bool wasTyping = GetFocus() == Item(IDC_NOTES);
        m_notes.Load(m_current ? m_current.Files()->notes : LPath());
        if (wasTyping) m_display.FocusHome();  // the next word would go into another patient's notes
        m_transport.EvDictationChanged();
    }
    m_display.ShowSituation(Situation());
}

// Follows a pending change of the selection at once; requests of other programs can overtake its posted
// message.
void MainDialog::SettleSelection() {
    if (m_selectionMoved && m_runner.OpenModal() != LModalRunner::Modal::Process) FollowSelection();
}

void MainDialog::SelectionMoved() {
    if (!std::exchange(m_selectionMoved, true)) PostMessageA(Window(), WM_SELECTIONMOVED, 0, 0);
}

void MainDialog::PlayFromStart() {
    SettleSelection();
    if (IsCommandEnabled(CM_PLAY, Situation())) m_transport.PlayFromStart();
}

void MainDialog::BeforeRename() {
    m_notes.Save();
}

void MainDialog::AfterRename(bool isLost) {
    if (isLost) m_dictations.TellNotStored();
    PostMessageA(Window(), WM_SHOWLATER, 0, 0);
}

void MainDialog::NotesStateChanged() {
    if (IsOpen()) m_display.ShowNotes(m_notes);
}

// ---- Notifications ---------------------------------------------------------------------------------------

void MainDialog::InsertKept(const DictationFiles& files) {
    m_inserts.OfferLater(files);
    PostMessageA(Window(), WM_INSERTKEPT, 0, 0);
}

void MainDialog::ActivityChanged() {
    if (!IsOpen()) return;
    m_list.ShowRecorded(m_transport.IsRecording() ? m_current.Files() : std::nullopt);
    m_display.ShowActivity();
    m_display.ShowSituation(Situation());
    m_microphone.Show(m_transport.IsRecording() ? DictCtrl::Display::Recording
                      : m_transport.IsPlaying() ? DictCtrl::Display::Playing
                                                : DictCtrl::Display::Stopped);
    if (!m_transport.IsRunning()) SetTimer(Window(), TIMER_STOPPEDTONE, kToneFirstMs, nullptr);
}

void MainDialog::PositionChanged() {
    if (!IsOpen()) return;
    m_display.ShowPosition();
    if (m_transport.IsRecording())
        m_list.ShowLength(std::max(m_transport.PositionMs(), m_transport.LengthMs()));
}

void MainDialog::PostSendProgress() {
    const HWND window = m_postTo.load();
    if (!window || m_isSendPosted.exchange(true)) return;
    if (!PostMessageA(window, WM_SENDPROGRESS, 0, 0)) m_isSendPosted = false;
}
