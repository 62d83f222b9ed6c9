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
#include "store/DictationFiles.h"

constexpr int kPositionFontHeight = 15;  // pixels
constexpr int kProgressSteps = 100;
constexpr int kLineGap = 6;  // pixels between a line and what lies on its end
// Of the state line while something is wrong: white on a dark red.
constexpr COLORREF kAlarmColour = RGB(176, 0, 0);
constexpr COLORREF kAlarmTextColour = RGB(255, 255, 255);

// The fixed tip of a control; nullptr: none.
const char* TipTextOf(int control) {
    for (const ControlTip& tip : kControlTips)
        if (tip.control == control) return tip.text;
    return nullptr;
}

// In the words of the menu, in the order of RecordMode.
constexpr const char* kRecordModes[] = {"mode: Record Overwrite", "mode: Record Insert",
                                        "mode: Record at End"};
constexpr int kButtons[] = {IDC_NEW,    IDC_SEND,        IDC_PLAY,    IDC_RECORD, IDC_STOP,    IDC_GOTOSTART,
                            IDC_REWIND, IDC_FASTFORWARD, IDC_GOTOEND, IDC_DOCK,   IDC_INFOLINK};
// Lines whose whole text is their tip where it is cut.
constexpr int kLines[] = {IDC_DICTATIONNAME, IDC_LOGGEDON, IDC_SENDLABEL};
constexpr int kSentTicks = 2;  // of the information line: "Sent" stands for five to ten seconds

// ---- Life ------------------------------------------------------------------------------------------------

void WindowDisplay::Attach(HWND window, const std::string& userName) {
    m_window = window;
    LoadIcons();
    ShowIcon(false);
    SetPositionFont();
    AddToolTips();
    ShowUser(userName);
    SendMessageA(Item(IDC_SENDPROGRESS), PBM_SETRANGE, 0, MAKELPARAM(0, kProgressSteps));
    ShowNextInfo();
}

void WindowDisplay::Detach() {
    m_toolTips.Close();
}

void WindowDisplay::ShowUser(const std::string& userName) {
    m_loggedOn = LFormat("Logged on as [%s]", LShownText(userName).c_str());
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
    font.lfHeight = LScaled(kPositionFontHeight);
    font.lfWidth = 0;
    font.lfWeight = FW_BOLD;
    m_positionFont.Reset(CreateFontIndirectA(&font));
    for (int control : {IDC_POSITION, IDC_DICTATIONNAME})
        SendMessageA(Item(control), WM_SETFONT, reinterpret_cast<WPARAM>(m_positionFont.Get()), FALSE);
}

void WindowDisplay::AddToolTips() {
    if (!m_toolTips.Create(m_window)) return;
    for (const ControlTip& tip : kControlTips)
        if (tip.control != IDC_LIST) m_toolTips.Add(tip.control);
    for (const int control : kLines) m_toolTips.Add(control);
}

std::string WindowDisplay::TipOf(HWND control) const {
    if (m_toolTips.IsHushed()) return {};
    const int number = GetDlgCtrlID(control);
    const char* const tip = TipTextOf(number);
    if (number == IDC_RECORD) return LFormat("%s, %s", tip, kRecordModes[static_cast<int>(m_recordMode)]);
    return tip != nullptr ? tip : TextThatIsCut(control, LineEnd(number));
}

// The list has no tip over its rows, where it would cover the words one reads, but for a name that is cut.
void WindowDisplay::Watch(const MSG& message) {
    m_toolTips.Watch(message);
    if (message.message != WM_MOUSEMOVE || message.hwnd != Item(IDC_LIST) || m_toolTips.IsHushed()) return;
    const POINT at = {static_cast<short>(LOWORD(message.lParam)), static_cast<short>(HIWORD(message.lParam))};
    std::string tip;
    RECT part = m_list.PartAt(at, tip);
    if (m_list.IsBesideRows(at)) {
        GetClientRect(message.hwnd, &part);
        tip = TipTextOf(IDC_LIST);
    }
    m_toolTips.SetPart(message.hwnd, part, tip);
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

void WindowDisplay::ShowPriority(HMENU menu) const {
    const int common = m_list.CommonPriority();
    for (int i = 0; i < static_cast<int>(std::size(kPriorities)); ++i)
        CheckMenuItem(menu, static_cast<UINT>(CM_PRIORITY_HIGH + i), MF_BYCOMMAND | MF_UNCHECKED);
    if (common >= 0)
        CheckMenuRadioItem(menu, CM_PRIORITY_HIGH, CM_PRIORITY_LOW,
                           static_cast<UINT>(CM_PRIORITY_HIGH + common), MF_BYCOMMAND);
}

void WindowDisplay::ShowSituation(CommandSituation situation) {
    situation.modal = CommandSituation::Modal::Nothing;
    if (std::exchange(m_view, situation.view) != situation.view) EvPlaced();
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
    // Nothing could take it for a moment, as while no row is selected.
    const bool isLost = GetFocus() == nullptr || GetFocus() == m_window;
    if (isLost && GetActiveWindow() == m_window) FocusHome();
    // An empty list shows no focus.
    const HWND list = Item(IDC_LIST);
    const LONG style = GetWindowLongA(list, GWL_STYLE);
    SetWindowLongA(list, GWL_STYLE, m_list.Count() > 0 ? style | WS_TABSTOP : style & ~WS_TABSTOP);
    ShowPosition();
}

// In the compact view: the first enabled one of Play, Go To Start and Record. Record comes last, since the
// next press of the space bar would give its command. An empty list would not show that it has the focus.
void WindowDisplay::FocusHome() {
    constexpr int kFull[] = {IDC_LIST};
    constexpr int kEmpty[] = {IDC_NEW, IDC_RECORD};
    constexpr int kCompact[] = {IDC_PLAY, IDC_GOTOSTART, IDC_RECORD};
    const bool isCompact = m_view == ViewMode::Compact;
    const std::span<const int> homes = isCompact             ? std::span<const int>(kCompact)
                                       : m_list.Count() == 0 ? std::span<const int>(kEmpty)
                                                             : std::span<const int>(kFull);
    for (int control : homes) {
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
    m_recordMode = mode;
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

void WindowDisplay::DrawItem(const DRAWITEMSTRUCT& item) const {
    const int control = static_cast<int>(item.CtlID);
    if (item.CtlType == ODT_STATIC) {
        const bool isSending = LWindowText(item.hwndItem) == Sending();
        return DrawTextLine(item, ColoursOf(control), LineEnd(control), isSending ? SendingTo().size() : 0);
    }
    if (control == IDC_INFOLINK) return DrawLinkButton(item);
    DrawTransportButton(item, IsHeld(control), RecordSign());
}

// A recording that a key or device asked for shows what it does, not what the button would do.
TransportSign WindowDisplay::RecordSign() const {
    if (m_transport.IsRecording())
        return m_transport.IsInserting() ? TransportSign::RecordInsert : TransportSign::Record;
    if (m_recordMode == RecordMode::Insert) return TransportSign::RecordInsert;
    return m_recordMode == RecordMode::Append ? TransportSign::RecordEnd : TransportSign::Record;
}

// Where a line of text ends, in its pixels: label and bar of sending lie on the end of the state line.
int WindowDisplay::LineEnd(int control) const {
    RECT box;
    GetClientRect(Item(control), &box);
    for (const int on : {IDC_SENDLABEL, IDC_SENDPROGRESS}) {
        if (control != IDC_LOGGEDON || !IsWindowVisible(Item(on))) continue;
        POINT end = {0, 0};
        MapWindowPoints(Item(on), Item(control), &end, 1);
        return static_cast<int>(end.x) - kLineGap;
    }
    return static_cast<int>(box.right);
}

LineColours WindowDisplay::ColoursOf(int control) const {
    if (control == IDC_LOGGEDON && m_isAlarm) return {kAlarmColour, kAlarmTextColour};
    return {GetSysColor(COLOR_BTNFACE), GetSysColor(COLOR_BTNTEXT)};
}

void WindowDisplay::SetLine(int control, const std::string& text) const {
    if (LWindowText(Item(control)) == text) return;
    LSetWindowText(Item(control), text);
    InvalidateRect(Item(control), nullptr, FALSE);
}

void WindowDisplay::EvColoursChanged() {
    for (const int control : {IDC_LIST, IDC_SENDPROGRESS})
        SendMessageA(Item(control), WM_SYSCOLORCHANGE, 0, 0);
    RedrawWindow(m_window, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
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
    if (m_transport.IsRecording() && m_transport.IsWaiting()) return "Listening: ";
    if (m_transport.IsRecording()) return m_transport.IsInserting() ? "Inserting: " : "Recording: ";
    constexpr const char* kPlaying[] = {"Playing (slow): ", "Playing: ", "Playing (fast): "};
    if (m_transport.IsPlaying()) return kPlaying[static_cast<int>(m_transport.Speed())];
    if (m_transport.IsWinding(WindDirection::Back)) return "Rewinding: ";
    return m_transport.IsWinding() ? "Winding: " : "";
}

void WindowDisplay::ShowPosition() {
    ShowState();
    if (!m_current) {
        SetLine(IDC_DICTATIONNAME, "No dictation selected");
        LSetWindowText(Item(IDC_POSITION), "");
        return;
    }
    SetLine(IDC_DICTATIONNAME, Doing() + m_list.NameOf(m_current.Files()->record));
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
        m_unsaved = "Notes not saved: " + m_list.NameOf(DictationFiles::OfPath(unsaved.First()).record);
    m_normalState = notes.ReadOnlyReason() != nullptr ? notes.ReadOnlyReason() : m_loggedOn;
    ShowState();
}

// The state line: a fault, else what the recording that waits will do, why the notes cannot be edited, or who
// is logged on.
void WindowDisplay::ShowState() {
    std::string wrong = m_unsaved;
    if (wrong.empty() && m_transport.HearsNothing()) wrong = "Listening: no sound from the microphone";
    if (wrong.empty() && m_transport.RecordedNothing()) wrong = "Nothing was recorded";
    const bool wasAlarm = std::exchange(m_isAlarm, !wrong.empty());
    std::string text = m_normalState;
    if (m_view == ViewMode::Compact && m_sending.state != SendActivity::State::Idle) text = Sending();
    if (m_transport.WillReplace())
        text = "Listening: will replace " + FormatDuration(m_transport.PositionMs()) + " to " +
               FormatDuration(m_transport.LengthMs());
    if (m_transport.IsInserting() && m_transport.IsWaiting())
        text = "Listening: will insert at " + FormatDuration(m_transport.PositionMs());
    SetLine(IDC_LOGGEDON, m_isAlarm ? wrong : text);
    if (m_isAlarm == wasAlarm) return;
    InvalidateRect(Item(IDC_LOGGEDON), nullptr, TRUE);
    EvPlaced();
}

// What the line says about sending.
std::string WindowDisplay::Sending() const {
    if (m_sending.state == SendActivity::State::Idle) return {};
    const bool isSent = m_sending.state == SendActivity::State::Sent;
    return (isSent ? "Sent: " : "Sending ") + LShownText(m_sending.dictation) + SendingTo();
}

// The end of that line, which is to be read also behind a long name.
std::string WindowDisplay::SendingTo() const {
    return m_sending.typist.empty() ? "" : " to " + LShownText(m_sending.typist);
}

void WindowDisplay::ShowSending(const SendActivity& activity, double fraction) {
    SendMessageA(Item(IDC_SENDPROGRESS), PBM_SETPOS, static_cast<WPARAM>(fraction * kProgressSteps + 0.5), 0);
    if (activity == m_sending) return;
    m_sending = activity;
    m_sentTicks = 0;
    SetLine(IDC_SENDLABEL, Sending());
    EvPlaced();
    ShowState();
}

// A fault has the state line for itself; the compact view says there what is sent.
void WindowDisplay::EvPlaced() {
    const bool isShown = !m_isAlarm && m_sending.state != SendActivity::State::Idle;
    const bool hasLabel = isShown && m_view != ViewMode::Compact;
    const bool hasBar = isShown && m_sending.state == SendActivity::State::Sending;
    // Without the bar the label has its place, too.
    RECT label, bar;
    GetWindowRect(Item(IDC_SENDLABEL), &label);
    GetWindowRect(Item(IDC_SENDPROGRESS), &bar);
    SetWindowPos(Item(IDC_SENDLABEL), nullptr, 0, 0, (hasBar ? bar.left - kLineGap : bar.right) - label.left,
                 label.bottom - label.top, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    ShowWindow(Item(IDC_SENDLABEL), hasLabel ? SW_SHOWNA : SW_HIDE);
    ShowWindow(Item(IDC_SENDPROGRESS), hasBar ? SW_SHOWNA : SW_HIDE);
    InvalidateRect(Item(IDC_LOGGEDON), nullptr, FALSE);
}

void WindowDisplay::ShowNextInfo() {
    if (m_sending.state == SendActivity::State::Sent && ++m_sentTicks >= kSentTicks) ShowSending({}, 0.0);
    if (m_isAlarm) return;
    SetLine(IDC_INFOLINE, kInfoTexts[m_infoText]);
    m_infoText = (m_infoText + 1) % std::size(kInfoTexts);
}
