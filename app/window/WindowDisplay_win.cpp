#include "app/window/WindowDisplay_win.h"

#include <commctrl.h>

#include <algorithm>
#include <span>
#include <utility>

#include "app/window/ControlNames.h"
#include "app/window/TransportButton_win.h"
#include "audio/device/LDBDisplay_win.h"
#include "base/LText.h"
#include "res/Ids.h"

constexpr int kPositionFontHeight = 15;  // pixels
constexpr int kProgressSteps = 100;
// Of the state line while something is wrong: white on a dark red.
constexpr COLORREF kAlarmColour = RGB(176, 0, 0);
constexpr COLORREF kAlarmTextColour = RGB(255, 255, 255);

constexpr int kButtons[] = {IDC_NEW,       IDC_SEND,   IDC_PLAY,        IDC_RECORD,  IDC_STOP,
                            IDC_GOTOSTART, IDC_REWIND, IDC_FASTFORWARD, IDC_GOTOEND, IDC_DOCK};

// ---- Life ------------------------------------------------------------------------------------------------

void WindowDisplay::Attach(HWND window, const std::string& userName) {
    m_window = window;
    LoadIcons();
    ShowIcon(false);
    SetPositionFont();
    AddToolTips();
    m_alarmBrush.Reset(CreateSolidBrush(kAlarmColour));
    ShowUser(userName);
    SendMessageA(Item(IDC_SENDPROGRESS), PBM_SETRANGE, 0, MAKELPARAM(0, kProgressSteps));
    ShowNextInfo();
}

void WindowDisplay::Detach() {
    m_toolTips.Close();
}

void WindowDisplay::ShowUser(const std::string& userName) {
    m_loggedOn = LFormat("Logged on as [%s]", userName.c_str());
    m_normalState = m_loggedOn;
    ShowState();
}

// Loaded once and owned: shared icons come in the size that was asked for first.
void WindowDisplay::LoadIcons() {
    const auto load = [](int resource, int cx, int cy) {
        return LIcon(static_cast<HICON>(LoadImageA(LInstance(), MAKEINTRESOURCEA(resource), IMAGE_ICON,
                                                   GetSystemMetrics(cx), GetSystemMetrics(cy), 0)));
    };
    for (int i = 0; i < 2; ++i) {
        m_icons[i][0] = load(i == 0 ? IDI_CORVANE : IDI_RECORDING, SM_CXICON, SM_CYICON);
        m_icons[i][1] = load(i == 0 ? IDI_CORVANE : IDI_RECORDING, SM_CXSMICON, SM_CYSMICON);
    }
}

void WindowDisplay::SetPositionFont() {
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

void WindowDisplay::AddToolTips() {
    if (!m_toolTips.Create(m_window)) return;
    for (const ControlTip& tip : kControlTips) m_toolTips.Add(tip.control, tip.text);
}

// ---- Commands --------------------------------------------------------------------------------------------

void WindowDisplay::EnableCommands(HMENU menu, const CommandSituation& situation) {
    for (int i = GetMenuItemCount(menu) - 1; i >= 0; --i) {
        if (const HMENU sub = GetSubMenu(menu, i)) EnableCommands(sub, situation);
        const UINT command = GetMenuItemID(menu, i);
        if (command == 0 || command == static_cast<UINT>(-1)) continue;
        const bool isEnabled = IsCommandEnabled(static_cast<int>(command), situation);
        EnableMenuItem(menu, command, MF_BYCOMMAND | (isEnabled ? MF_ENABLED : MF_GRAYED));
    }
}

void WindowDisplay::ShowPopup(int resource, POINT at, const CommandSituation& situation) const {
    const HMENU menu = LoadMenuA(LInstance(), MAKEINTRESOURCEA(resource));
    if (menu == nullptr) return;
    const HMENU popup = GetSubMenu(menu, 0);
    EnableCommands(popup, situation);
    TrackPopupMenu(popup, TPM_RIGHTBUTTON, at.x, at.y, 0, m_window, nullptr);
    DestroyMenu(menu);
}

void WindowDisplay::ShowSituation(CommandSituation situation) {
    situation.standing = CommandSituation::Standing::Nothing;
    m_view = situation.view;
    EnableCommands(GetMenu(m_window), situation);
    const auto enable = [&](bool isEnabled) {
        for (int control : kButtons)
            if (IsCommandEnabled(control, situation) == isEnabled) EnableWindow(Item(control), isEnabled);
    };
    enable(true);
    // The focus must not stay on a control that is about to be disabled.
    if (const int focused = FocusedButton(); focused != 0 && !IsCommandEnabled(focused, situation))
        FocusHome();
    enable(false);
    ShowPosition();
}

// In the compact view: the first enabled one of Play, Go To Start and Record. Record comes last, since the
// next press of the space bar would give its command.
void WindowDisplay::FocusHome() {
    constexpr int kFull[] = {IDC_LIST};
    constexpr int kCompact[] = {IDC_PLAY, IDC_GOTOSTART, IDC_RECORD};
    const bool isCompact = m_view == ViewMode::Compact;
    for (int control : isCompact ? std::span<const int>(kCompact) : std::span<const int>(kFull)) {
        if (!IsWindowEnabled(Item(control))) continue;
        SetFocus(Item(control));
        return;
    }
}

void WindowDisplay::LeaveButton(HWND cameFrom) {
    if (FocusedButton() == 0) return;
    if (cameFrom != nullptr && IsWindowEnabled(cameFrom) && IsWindowVisible(cameFrom))
        SetFocus(cameFrom);
    else
        FocusHome();
}

// The number of the focused button; 0 when the focus is elsewhere, or in another program.
int WindowDisplay::FocusedButton() const {
    const HWND focus = GetFocus();
    for (int control : kButtons)
        if (focus != nullptr && focus == Item(control)) return control;
    return 0;
}

void WindowDisplay::ShowRecordMode(RecordMode mode) {
    m_showsInsert = mode == RecordMode::Insert;
    InvalidateRect(Item(IDC_RECORD), nullptr, FALSE);
    CheckMenuRadioItem(GetMenu(m_window), CM_RECORDMODE_OVERWRITE, CM_RECORDMODE_END,
                       static_cast<UINT>(CM_RECORDMODE_OVERWRITE + static_cast<int>(mode)), MF_BYCOMMAND);
}

void WindowDisplay::ShowPlaySpeed(PlaySpeed speed) {
    CheckMenuRadioItem(GetMenu(m_window), CM_PLAY_SLOW, CM_PLAY_FAST,
                       static_cast<UINT>(CM_PLAY_SLOW + static_cast<int>(speed)), MF_BYCOMMAND);
}

// ---- Activity --------------------------------------------------------------------------------------------

void WindowDisplay::ShowActivity() {
    if (m_transport.IsRecording() != m_showsRecordingIcon) {
        m_showsRecordingIcon = m_transport.IsRecording();
        ShowIcon(m_showsRecordingIcon);
    }
    for (int control : {IDC_RECORD, IDC_PLAY, IDC_REWIND, IDC_FASTFORWARD})
        InvalidateRect(Item(control), nullptr, FALSE);
    for (int control : {IDC_LEVEL_LEFT, IDC_LEVEL_RIGHT})
        EnableWindow(Item(control), m_transport.IsRunning());
}

void WindowDisplay::ShowIcon(bool isRecording) {
    const LIcon(&icons)[2] = m_icons[isRecording ? 1 : 0];
    SendMessageA(m_window, WM_SETICON, ICON_BIG, reinterpret_cast<LPARAM>(icons[0].Get()));
    SendMessageA(m_window, WM_SETICON, ICON_SMALL, reinterpret_cast<LPARAM>(icons[1].Get()));
}

void WindowDisplay::DrawButton(const DRAWITEMSTRUCT& item) const {
    const int control = static_cast<int>(item.CtlID);
    DrawTransportButton(item, IsHeld(control), control == IDC_RECORD && m_showsInsert);
}

// Whether a transport button stays pressed, because its activity goes on.
bool WindowDisplay::IsHeld(int control) const {
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

// The activity, in front of the dictation's name.
const char* WindowDisplay::Doing() const {
    if (m_transport.HearsNothing()) return "No voice heard: ";
    if (m_transport.RecordedNothing()) return "Nothing recorded: ";
    if (m_transport.IsRecording()) return m_transport.IsWaiting() ? "Listening: " : "Recording: ";
    constexpr const char* kPlaying[] = {"Playing slowly: ", "Playing: ", "Playing fast: "};
    if (m_transport.IsPlaying()) return kPlaying[static_cast<int>(m_transport.Speed())];
    if (m_transport.IsWinding(WindDirection::Back)) return "Rewinding: ";
    return m_transport.IsWinding() ? "Winding: " : "";
}

void WindowDisplay::ShowPosition() {
    ShowState();
    if (!m_current) {
        LSetWindowText(Item(IDC_DICTATIONNAME), "No dictation selected");
        LSetWindowText(Item(IDC_POSITION), "");
        return;
    }
    LSetWindowText(Item(IDC_DICTATIONNAME), Doing() + m_list.NameOf(m_current.Files()->record));
    const int32_t position = m_transport.PositionMs();
    const int32_t length = std::max(position, m_transport.LengthMs());
    LSetWindowText(Item(IDC_POSITION), FormatDuration(position) + " / " + FormatDuration(length));
}

void WindowDisplay::ShowLevels(int8_t leftDb, int8_t rightDb) {
    LDBDisplaySetLevel(Item(IDC_LEVEL_LEFT), leftDb);
    LDBDisplaySetLevel(Item(IDC_LEVEL_RIGHT), rightDb);
}

// ---- Lines -----------------------------------------------------------------------------------------------

void WindowDisplay::ShowNotes(const NotesBox& notes) {
    const UnsavedNotes& unsaved = notes.Unsaved();
    m_unsaved.clear();
    if (!unsaved.Empty())
        m_unsaved = "Notes not saved: " + m_list.NameOf(unsaved.First().WithExtension(".dat"));
    m_normalState = notes.ReadOnlyReason() != nullptr ? notes.ReadOnlyReason() : m_loggedOn;
    ShowState();
}

// The state line: a fault, else why the notes cannot be edited or who is logged on.
void WindowDisplay::ShowState() {
    std::string wrong = m_unsaved;
    if (wrong.empty() && m_transport.HearsNothing()) wrong = "No voice heard. Microphone on?";
    if (wrong.empty() && m_transport.RecordedNothing()) wrong = "Nothing was recorded.";
    const bool wasAlarm = std::exchange(m_isAlarm, !wrong.empty());
    LSetWindowText(Item(IDC_LOGGEDON), m_isAlarm ? wrong : m_normalState);
    if (m_isAlarm != wasAlarm) InvalidateRect(Item(IDC_LOGGEDON), nullptr, TRUE);
}

bool WindowDisplay::ColourState(HDC dc, HWND control, LRESULT& brush) const {
    if (!m_isAlarm || control != Item(IDC_LOGGEDON)) return false;
    SetTextColor(dc, kAlarmTextColour);
    SetBkColor(dc, kAlarmColour);
    brush = reinterpret_cast<LRESULT>(m_alarmBrush.Get());
    return true;
}

void WindowDisplay::ShowSendProgress(double fraction) {
    SendMessageA(Item(IDC_SENDPROGRESS), PBM_SETPOS, static_cast<WPARAM>(fraction * kProgressSteps + 0.5), 0);
}

void WindowDisplay::ShowNextInfo() {
    if (m_isAlarm) return;
    LSetWindowText(Item(IDC_INFOLINE), kInfoTexts[m_infoText]);
    m_infoText = (m_infoText + 1) % std::size(kInfoTexts);
}
