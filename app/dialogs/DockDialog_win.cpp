#include "app/dialogs/DockDialog_win.h"

#include <commctrl.h>

#include "app/transport/MixerLines_win.h"
#include "app/transport/RecordPlan.h"
#include "audio/device/LDBDisplay_win.h"
#include "audio/device/LMixer_win.h"
#include "base/LText.h"
#include "res/Ids.h"
#include "store/SettingsKeys.h"

// Until the first sound, what the user changes counts at once: a timer sees it and begins anew. Afterwards it
// counts from Restart on, since a new beginning replaces the recording; the volume alone counts at any time.
// Closing by the window's button or Escape keeps the recording too, but neither sends it nor stores the
// settings: nobody deletes an hour of tape by a key.

namespace {

constexpr UINT_PTR kTimer = 1;
// From the lowest to the highest volume that a mixer knows; and the levels that the meter shows.
constexpr int32_t kLeastVolumeDb = -36, kMostVolumeDb = 11;
constexpr int32_t kLeastStartDb = kLeastDockDb, kMostStartDb = 0;
constexpr int32_t kMostPercent = 10000;

constexpr char kTitle[] = "Portable Recorder";
constexpr char kSilence[] =
    "Nothing was recorded, since no sound has reached the activation level.\n\n"
    "Please set Activation to where the meter comes while the tape plays, and play it again. To close this "
    "window without a recording press Esc.";
constexpr char kOtherSpeed[] =
    "The tape was recorded at %d percent; a change counts when you click Restart and play the tape again."
    "\n\nDo you want to keep it as it is?";

constexpr SettingsRow kRows[] = {
    {LControlRow::Slider(IDC_DOCK_VOLUME, kLeastVolumeDb, kMostVolumeDb), SettingsKeys::kDockRecordVolume},
    {LControlRow::Slider(IDC_DOCK_START, kLeastStartDb, kMostStartDb), SettingsKeys::kDockActivate},
    {LControlRow::Check(IDC_DOCK_HIGHSPEED), SettingsKeys::kDockHighSpeed},
    {LControlRow::Number(IDC_DOCK_PERCENT, 1, kMostPercent), SettingsKeys::kDockHighSpeedPercent},
    {LControlRow::Check(IDC_DOCK_AUTOSEND), SettingsKeys::kDockAutoSend},
};

}  // namespace

DockDialog::DockDialog(const AppState& state, Owner& owner)
    : m_state(state),
      m_owner(owner),
      m_rows(state.data.settingsFile, kRows),
      m_table(m_rows),
      m_recording(*this) {}

bool DockDialog::Open(HWND owner, const DictationFiles& files) {
    m_files = files;
    m_sends = false;
    m_heardPercent.reset();
    if (!Create(IDD_DOCK, owner)) return false;
    ShowWindow(Window(), SW_SHOW);
    return true;
}

bool DockDialog::InitDialog() {
    m_table.Load(Window());
    ShowInput();
    ShowValues();
    SetTimer(Window(), kTimer, QuietTape::kTickMs, nullptr);
    Request(DOCK_SHOWBUTTON, {});
    Record();
    // Not the list of devices: a key that was meant for the main window would choose another one.
    if (IsOpen()) SetFocus(Item(IDOK));
    return false;
}

// The line that the program chooses is shown as the line that it has chosen.
void DockDialog::ShowInput() {
    MixerLines lines;
    m_input = GetDockSoundIn(m_state.data.settingsFile, lines);
    m_lines.Fill(Item(IDC_DOCK_DEVICE), Item(IDC_DOCK_LINE), m_input.device, m_input.line);
}

void DockDialog::ShowValues() const {
    EnableWindow(Item(IDC_DOCK_PERCENT), IsChecked(IDC_DOCK_HIGHSPEED));
    LSetWindowText(Item(IDC_DOCK_VOLUMETEXT), LFormatLevel(Level(IDC_DOCK_VOLUME)));
    LSetWindowText(Item(IDC_DOCK_STARTTEXT), LFormatLevel(Level(IDC_DOCK_START)));
    LSetWindowText(Item(IDC_DOCK_LENGTH), m_recording.LengthText());
}

void DockDialog::ShowState() const {
    const bool isChanged = m_recording.HoldsDevice() && Shown() != m_recorded;
    const DockState state = isChanged ? DockState::Changed : m_recording.State();
    LSetWindowText(Item(IDC_DOCK_STATUS), DockStateText(state));
}

DockRecording::Choice DockDialog::Shown() const {
    DockRecording::Choice choice;
    choice.input = {LSelectedListItem(Item(IDC_DOCK_DEVICE)).value_or(m_lines.Device()),
                    LSelectedListItem(Item(IDC_DOCK_LINE)).value_or(LMixer::kRecordMixerChannel)};
    choice.startDb = Level(IDC_DOCK_START);
    choice.percent = 100;
    if (IsChecked(IDC_DOCK_HIGHSPEED)) choice.percent = m_table.NumberOf(IDC_DOCK_PERCENT);
    return choice;
}

// ---- Recording -------------------------------------------------------------------------------------------

void DockDialog::Record() {
    m_hasYielded = false;
    m_recorded = Shown();
    m_owner.TakeInput();
    if (!IsOpen()) return;
    const int32_t rate = static_cast<int32_t>(NewRecordingFormat(m_state.user.userFile).SampleRate());
    m_recording.Start(m_files.audio, rate, m_recorded, Level(IDC_DOCK_VOLUME));
}

void DockDialog::YieldInput() {
    if (!m_recording.IsRunning() || m_recording.HasHeard()) return;
    m_recording.GiveUp();
    m_hasYielded = true;
}

void DockDialog::EvTimer() {
    m_recording.Tick();
    ShowValues();
    ShowState();
    const bool isStale = m_hasYielded || Shown() != m_recorded;
    if (isStale && !m_recording.HasHeard() && !m_owner.IsInputTaken()) Record();
}

void DockDialog::DockLevel(int8_t levelDb) {
    if (IsOpen()) LDBDisplaySetLevel(Item(IDC_DOCK_METER), levelDb);
}

void DockDialog::DockChanged() {
    if (!IsOpen()) return;
    if (m_recording.HoldsDevice()) m_heardPercent = m_recorded.percent;
    EnableWindow(Item(IDC_DOCK_METER), m_recording.IsRunning());
    ShowState();
    ShowValues();
}

// ---- Commands --------------------------------------------------------------------------------------------

bool DockDialog::PreTranslateMessage(MSG& message) {
    return IsOpen() && IsDialogMessageA(Window(), &message);
}

bool DockDialog::HandleMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) {
    result = 0;
    switch (message) {
        case WM_COMMAND:
            return EvCommand(LOWORD(wParam), HIWORD(wParam));
        case WM_HSCROLL:
            ShowValues();
            if (reinterpret_cast<HWND>(lParam) == Item(IDC_DOCK_VOLUME) && m_recording.IsRunning())
                m_recording.SetVolume(Level(IDC_DOCK_VOLUME));
            return true;
        case WM_TIMER:
            EvTimer();
            return true;
        case WM_CLOSE:
            Close();
            return true;
        default:
            return false;
    }
}

bool DockDialog::EvCommand(int control, int notification) {
    if (control == IDC_DOCK_DEVICE && notification == CBN_SELCHANGE) return m_lines.Follow(), true;
    if (notification != BN_CLICKED) return false;
    switch (control) {
        case IDOK:
            return CmOk(), true;
        case IDCANCEL:
            return Close(), true;
        case IDC_DOCK_RESTART:
            return CmRestart(), true;
        case IDC_DOCK_HIGHSPEED:
            return ShowValues(), true;
        case IDHELP:
            PostMessageA(GetWindow(Window(), GW_OWNER), WM_COMMAND, CM_HELP, 0);
            return true;
        default:
            return false;
    }
}

// Whether a value cannot be accepted; the user is told.
bool DockDialog::Refuse() {
    const auto problem = m_table.FindProblem();
    if (!problem) return false;
    LMessageBox(Window(), problem->text, "Error", MB_OK | MB_ICONEXCLAMATION);
    if (IsOpen())
        SendMessageA(Window(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(Item(problem->control)), TRUE);
    return true;
}

void DockDialog::CmRestart() {
    if (!Refuse()) Record();
}

// Whether there is no recording to be accepted yet; the user is told. After Restart the earlier one stands.
bool DockDialog::RefuseSilence() {
    if (m_heardPercent || !m_recording.IsRunning()) return false;
    LMessageBox(Window(), kSilence, kTitle, MB_OK | MB_ICONEXCLAMATION);
    return true;
}

bool DockDialog::IsSpeedMeant() {
    if (!m_heardPercent || Shown().percent == m_heardPercent) return true;
    const std::string text = LFormat(kOtherSpeed, static_cast<int>(*m_heardPercent));
    return LMessageBox(Window(), text, kTitle, MB_YESNO | MB_DEFBUTTON2 | MB_ICONQUESTION) == IDYES;
}

void DockDialog::CmOk() {
    if (Refuse() || RefuseSilence() || !IsSpeedMeant() || !IsOpen()) return;
    m_rows.Retry();
    m_table.Store(LControlTable::Which::All);
    if (!StoreInput() || !m_rows.IsStored()) m_owner.TellTrouble(kSettingsNotStored);
    m_sends = IsChecked(IDC_DOCK_AUTOSEND);
    Close();
}

// Where the user has chosen none, the program goes on choosing the line.
bool DockDialog::StoreInput() const {
    const SoundInput shown = Shown().input;
    if (shown == m_input) return true;
    Settings::Write(m_state.data.settingsFile, SettingsKeys::kDockSoundIn, shown.device);
    Settings::Write(m_state.data.settingsFile, SettingsKeys::kDockSoundInChan, shown.line);
    return Settings::Read(m_state.data.settingsFile, SettingsKeys::kDockSoundIn) == shown.device &&
           Settings::Read(m_state.data.settingsFile, SettingsKeys::kDockSoundInChan) == shown.line;
}

// ---- End -------------------------------------------------------------------------------------------------

void DockDialog::DestroyDialog() {
    KillTimer(Window(), kTimer);
    m_recording.Stop();
    const HWND owner = GetWindow(Window(), GW_OWNER);
    if (m_owner.KeepRecorded(m_files)) {
        Request(DOCK_ADD, LPath(LSplitPath(m_files.record.View()).name));
        if (m_sends) Request(DOCK_SEND, m_files.record);
    }
    PostMessageA(owner, WM_DOCKREQUEST, DOCK_SHOWBUTTON, 0);  // worked off when this window is gone
}

void DockDialog::Request(int request, const LPath& text) {
    m_request = text.c_str();
    SendMessageA(GetWindow(Window(), GW_OWNER), WM_DOCKREQUEST, static_cast<WPARAM>(request),
                 reinterpret_cast<LPARAM>(m_request));
    m_request = nullptr;
}

bool DockDialog::IsMaking(int request, LPARAM text) const {
    return request == DOCK_SHOWBUTTON ||
           (m_request != nullptr && reinterpret_cast<LPARAM>(m_request) == text);
}
