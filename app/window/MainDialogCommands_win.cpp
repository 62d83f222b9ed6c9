#include <windows.h>

#include <utility>

#include "app/dialogs/HardwareSettings_win.h"
#include "app/dialogs/RecipientSettings_win.h"
#include "app/window/HoldButton_win.h"
#include "app/window/MainDialog_win.h"
#include "base/LText.h"
#include "base/LTrace.h"
#include "res/Ids.h"
#include "store/SettingsKeys.h"
#include "ui/LShell.h"

// All sources of commands call Give, which first follows a pending change of the selection, then asks
// IsCommandEnabled, then runs the command's row of the table. The enabled state of menu items and buttons is
// only a picture of the same rule and is never relied on.

namespace {

constexpr char kNoBrowser[] =
    "The page could not be opened. Please enter its address into your Internet browser:\n\n%s";
// In the order of the commands.
constexpr const char* kWebPages[] = {
    "http://www.mervald.example/corvane",
    "http://www.mervald.example/support",
    "http://www.mervald.example/quennet",
};

constexpr char kNoDockMethod[] =
    "Before you can use the Dock button on the Main Window, you must select your preferred Dock method.\r\n"
    "Please select the preferred dock method using one of the options under the Transfer from Portable "
    "Recorder item on the File menu.";

class AboutDialog final : public LDialog {};

// Where a menu of a control opens: at the control when the keyboard asked, else at the mouse.
POINT MenuPlace(HWND control) {
    POINT at = {};
    GetCursorPos(&at);
    RECT box = {};
    GetWindowRect(control, &box);
    if (GetFocus() == control && !PtInRect(&box, at)) at = {box.left, box.bottom};
    return at;
}

WindDirection DirectionOf(int button) {
    return button == IDC_REWIND || button == CM_REWIND ? WindDirection::Back : WindDirection::Forward;
}

}  // namespace

// In the order of the command numbers: first, last, function; its result is Give's.
const MainDialog::CommandEntry MainDialog::kCommands[] = {
    {IDC_INFOLINE, IDC_INFOLINK,
     [](MainDialog& d, int) {
         d.m_display.ShowPopup(IDM_INFO, MenuPlace(d.Item(IDC_INFOLINK)), d.Situation());
         return true;
     }},
    {IDC_DOCK, IDC_DOCK, [](MainDialog& d, int) { return d.Dock(); }},
    {CM_WEB_PRODUCT, CM_WEB_TYPIST, [](MainDialog& d, int command) { return d.OpenWebPage(command); }},
    {CM_NEWFILE, CM_NEWFILE, [](MainDialog& d, int) { return d.m_dictations.Create(); }},
    {CM_SENDFILE, CM_SENDFILE,
     [](MainDialog& d, int) { return d.m_dictations.SendSelected(DictationCommands::To::Default); }},
    {CM_SENDFILE_TO, CM_SENDFILE_TO,
     [](MainDialog& d, int) { return d.m_dictations.SendSelected(DictationCommands::To::Chosen); }},
    {CM_RENAMEFILE, CM_RENAMEFILE,
     // Pending changes first: the row must not move under its editor.
     [](MainDialog& d, int) {
         d.m_wasTyping = GetFocus() == d.Item(IDC_NOTES);
         d.m_list.UpdateNoted();
         return d.m_dictations.BeginRename();
     }},
    {CM_DELETEFILE, CM_DELETEFILE, [](MainDialog& d, int) { return d.m_dictations.DeleteSelected(); }},
    {CM_DOCK_CABLE, CM_DOCK_CABLE,
     [](MainDialog& d, int) {
         d.m_splash.Close();
         return d.m_dock.Cable();
     }},
    {CM_DOCK_TRANSFER, CM_DOCK_TRANSFER, [](MainDialog& d, int) { return d.TransferFiles(); }},
    {CM_VIEWSENT, CM_VIEWSENT, [](MainDialog& d, int) { return d.m_sent.ViewSent(); }},
    {CM_RECOVER, CM_RECOVER, [](MainDialog& d, int) { return d.RecoverSent(); }},
    {CM_LOGON, CM_LOGON, [](MainDialog& d, int) { return d.LogOnAsOther(); }},
    {CM_PRIORITY_HIGH, CM_PRIORITY_LOW,
     [](MainDialog& d, int command) {
         return d.m_dictations.SetPriority(kPriorities[command - CM_PRIORITY_HIGH]);
     }},
    {CM_LOADFILE, CM_LOADSENDFILE,
     [](MainDialog& d, int command) { return d.LoadFiles(command == CM_LOADSENDFILE); }},
    {CM_EXIT, CM_EXIT, [](MainDialog& d, int) { return d.CloseLater(), true; }},
    {CM_RECORD, CM_RECORD, [](MainDialog& d, int) { return d.m_transport.Record(d.DefaultRecordMode()); }},
    {CM_PLAY, CM_PLAY, [](MainDialog& d, int) { return d.m_transport.Play(); }},
    {CM_STOP, CM_STOP,
     [](MainDialog& d, int) {
         d.m_sent.StopPlaying();
         return d.m_transport.Stop();
     }},
    {CM_PLAY_SLOW, CM_PLAY_FAST,
     [](MainDialog& d, int command) {
         return d.SetPlaySpeed(static_cast<PlaySpeed>(command - CM_PLAY_SLOW));
     }},
    {CM_GOTOSTART, CM_GOTOSTART, [](MainDialog& d, int) { return d.m_transport.GoToStart(), true; }},
    {CM_REWIND, CM_FASTFORWARD,
     // A menu item cannot be held: the same command again, or Stop, ends winding.
     [](MainDialog& d, int command) {
         return d.Wind(DirectionOf(command), !d.m_transport.IsWinding(DirectionOf(command)));
     }},
    {CM_GOTOEND, CM_GOTOEND, [](MainDialog& d, int) { return d.m_transport.GoToEnd(), true; }},
    {CM_RECORD_OVERWRITE, CM_RECORD_END,
     [](MainDialog& d, int command) {
         return d.m_transport.Record(static_cast<RecordMode>(command - CM_RECORD_OVERWRITE));
     }},
    {CM_RECORDMODE_OVERWRITE, CM_RECORDMODE_END,
     [](MainDialog& d, int command) {
         return d.SetRecordMode(static_cast<RecordMode>(command - CM_RECORDMODE_OVERWRITE));
     }},
    {CM_SETTINGS_HARDWARE, CM_SETTINGS_HARDWARE, [](MainDialog& d, int) { return d.ShowHardwareSettings(); }},
    {CM_SETTINGS_RECIPIENTS, CM_SETTINGS_RECIPIENTS,
     [](MainDialog& d, int) { return ShowRecipientSettings(d.m_state, d.m_queue, d.m_runner), true; }},
    {CM_SETTINGS_USER, CM_SETTINGS_USER, [](MainDialog& d, int) { return d.EditUserSettings(); }},
    {CM_VIEW_COMPACT, CM_VIEW_MAXIMIZED,
     [](MainDialog& d, int command) { return d.SetView(static_cast<ViewMode>(command - CM_VIEW_COMPACT)); }},
    {CM_VIEW_FLOAT, CM_VIEW_FLOAT, [](MainDialog& d, int) { return d.m_layout.ToggleFloat(), true; }},
    {CM_HELP, CM_HELP, [](MainDialog& d, int) { return d.CmHelp(); }},
    {CM_ABOUT, CM_ABOUT, [](MainDialog& d, int) { return d.ShowAbout(); }},
};

CommandSituation MainDialog::Situation() const {
    using Modal = CommandSituation::Modal;
    const LModalRunner::Modal stands = m_runner.OpenModal();
    return {.view = m_layout.View(),
            .selectedRows = m_list.SelectedCount(),
            .hasAudio = m_current && m_transport.LengthMs() > 0,
            .isRecording = m_transport.IsRecording(),
            .isRunning = IsRunning(),
            .modal = stands == LModalRunner::Modal::Nothing    ? Modal::Nothing
                     : stands == LModalRunner::Modal::Question ? Modal::Question
                                                               : Modal::Process};
}

bool MainDialog::Give(int command) {
    if (!IsOpen() || m_isClosing) return false;
    SettleSelection();
    command = MenuCommandOf(command);
    if (!IsOpen() || !IsCommandEnabled(command, Situation())) return false;
    for (const CommandEntry& entry : kCommands) {
        if (command < entry.first || command > entry.last) continue;
        const std::optional<DictationFiles> before = m_current.Files();
        m_transport.ForgetNothingRecorded();
        const bool isDone = entry.give(*this, command);
        SettleSelection();
        if (!IsOpen()) return isDone;
        LeaveButton();
        // The next typed word would go into another patient's notes.
        if (!m_current.Is(before) && GetFocus() == Item(IDC_NOTES)) m_display.FocusHome();
        return isDone;
    }
    return false;
}

// Gives the keyboard back to the notes if the button was pressed while typing, else to the list.
// A button that is still held keeps it: losing the keyboard is a release.
void MainDialog::LeaveButton() {
    if (IsHeldByHand(GetFocus())) return;
    const bool wasTyping = m_notes.LeftFor() != nullptr && m_notes.LeftFor() == GetFocus();
    if (IsOpen()) m_display.LeaveButton(wasTyping ? Item(IDC_NOTES) : nullptr);
}

// Other programs may change something when a menu command could: the window is open and nothing modal is.
bool MainDialog::MayChange() {
    if (!IsOpen() || m_isClosing || m_runner.OpenModal() != LModalRunner::Modal::Nothing) return false;
    SettleSelection();
    return IsOpen();
}

bool MainDialog::Wind(WindDirection direction, bool isDown) {
    if (!isDown) {
        m_transport.EndWinding(direction);
        return true;
    }
    return IsCommandEnabled(CM_REWIND, Situation()) && m_transport.BeginWinding(direction);
}

bool MainDialog::HoldWinding(WindDirection direction, bool isDown) {
    const HWND button = Item(direction == WindDirection::Back ? IDC_REWIND : IDC_FASTFORWARD);
    if (isDown) return IsCommandEnabled(IDC_REWIND, Situation()) && PressHoldButton(button);
    ReleaseHoldButton(button);
    return true;
}

RecordMode MainDialog::DefaultRecordMode() const {
    return ToRecordMode(Settings::Read(m_state.user.userFile, UserKeys::kRecordMode));
}

bool MainDialog::SetRecordMode(RecordMode mode) {
    Settings::Write(m_state.user.userFile, UserKeys::kRecordMode, static_cast<int32_t>(mode));
    m_display.ShowRecordMode(DefaultRecordMode());
    return true;
}

bool MainDialog::SetPlaySpeed(PlaySpeed speed) {
    const bool plays = m_transport.PlayAt(speed);
    m_display.ShowPlaySpeed(m_transport.PlaySpeedNow());
    return plays;
}

bool MainDialog::SetView(ViewMode view) {
    const HWND focus = GetFocus();
    m_layout.SetView(view);
    if (m_list.IsRenaming()) SetFocus(Item(IDC_LIST));  // ends the name editor, which may be invisible now
    // Where one row is shown, one is selected: Delete and Send take all that are.
    if (m_layout.View() == ViewMode::Compact && m_current) m_list.SelectFile(m_current.Files()->record);
    m_display.ShowSituation(Situation());
    // The list has the focus again after the compact view; notes that are typed keep it.
    const bool isTyping = focus == Item(IDC_NOTES) && IsWindowVisible(focus);
    if (GetActiveWindow() == Window() && !isTyping) m_display.FocusHome();
    return true;
}

// Runs the method of transfer that was used last.
bool MainDialog::Dock() {
    const int32_t method = Settings::Read(m_state.data.settingsFile, SettingsKeys::kDockMethod);
    const bool isKnown = method == 0 || method == 1;
    const bool isDone = isKnown && Give(CM_DOCK_CABLE + method);
    if (!isKnown) m_runner.Box(kNoDockMethod, "Dock Method Not Known", MB_OK | MB_ICONEXCLAMATION);
    m_dock.ShowButton();  // the click has released it
    return isDone;
}

// A hot key of ours would not reach the box in which keys are chosen, and the pedals are tested there.
bool MainDialog::ShowHardwareSettings() {
    m_hotKeys.UnregisterHotKeys();
    m_pedals.Stop();
    ::ShowHardwareSettings(m_state.data.settingsFile, m_runner);
    if (!IsOpen()) return true;
    m_pedals.Start(Window());
    m_hotKeys.RegisterHotKeys(Window());
    return true;
}

bool MainDialog::RecoverSent() {
    const std::optional<std::vector<LPath>> recovered = m_sent.Recover();
    if (!recovered || !m_runner.MayGoOn()) return false;
    m_notes.Save();
    if (m_transport.IsBusy()) {  // a device records or plays: what it works on stays the current one
        for (const LPath& record : *recovered) m_list.AddFile(record);
        return true;
    }
    if (!FillList()) return false;
    for (const LPath& record : *recovered) m_list.AddFile(record);  // where the filling was cancelled
    if (recovered->empty()) return true;
    const bool isOneShown = m_layout.View() == ViewMode::Compact;
    isOneShown ? m_list.SelectFile(recovered->back()) : m_list.SelectFiles(*recovered);
    return true;
}

bool MainDialog::LoadFiles(bool send) {
    const std::optional<std::vector<LPath>> loaded = m_import.LoadChosen(send);
    if (!loaded || !m_runner.MayGoOn()) return false;
    SelectLoaded(*loaded);
    return true;
}

bool MainDialog::TransferFiles() {
    m_loaded.clear();
    const bool isDone = m_dock.Transfer();
    if (m_runner.MayGoOn()) SelectLoaded(std::exchange(m_loaded, {}));
    return isDone;
}

// What was loaded and is still here becomes the selection, unless a device records or plays: what it works on
// stays the current dictation.
void MainDialog::SelectLoaded(std::vector<LPath> loaded) {
    std::erase_if(loaded, [this](const LPath& record) { return !m_list.NumberOf(record); });
    if (loaded.empty() || m_transport.IsBusy()) return;
    m_notes.Save();
    const bool isOneShown = m_layout.View() == ViewMode::Compact;
    isOneShown ? m_list.SelectFile(loaded.back()) : m_list.SelectFiles(loaded);
}

bool MainDialog::ShowAbout() {
    AboutDialog about;
    m_runner.RunModal(about, IDD_ABOUT, LModalRunner::Activity::GoesOn);
    return true;
}

bool MainDialog::OpenWebPage(int command) {
    const char* const page = kWebPages[command - CM_WEB_PRODUCT];
    if (LOpenDocument(Window(), page)) return true;
    m_runner.Tell(LFormat(kNoBrowser, page));
    return false;
}

void MainDialog::SelectAllRows() {
    if (!MayChange() || m_layout.View() == ViewMode::Compact) return;
    m_list.SelectAll();
    m_display.FocusHome();
}

void MainDialog::OpenWindow() {
    if (IsIconic(Window())) ShowWindow(Window(), SW_RESTORE);
    SetForegroundWindow(GetLastActivePopup(Window()));  // an open box, which has disabled the window
}

int MainDialog::Status() const {
    if (m_transport.IsRecording()) return m_transport.IsWaiting() ? 2 : 1;
    if (m_transport.IsPlaying()) return 3;
    return m_transport.IsWinding() ? 4 : 0;
}

void MainDialog::AppendNotes(std::string_view text) {
    SettleSelection();
    m_notes.Append(text);
}

int32_t MainDialog::CurrentNumber() {
    SettleSelection();
    return m_current ? m_list.NumberOf(m_current.Files()->record).value_or(0) : 0;
}

// The record button is held like a pedal: a click starts, the next click stops, a hold records while it
// lasts.
void MainDialog::EvHoldButton(WPARAM wParam, LPARAM lParam) {
    if (wParam != IDC_RECORD)
        Wind(DirectionOf(static_cast<int>(wParam)), lParam != 0);
    else if (lParam != 0)
        m_devices.CommandPress(InputControl::RecordButton, CI_RECORD);
    else
        m_devices.CommandRelease(InputControl::RecordButton, CI_RECORD, kHoldLimitMs);
    if (lParam == 0) LeaveButton();
}
