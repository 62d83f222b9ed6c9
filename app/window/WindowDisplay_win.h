#pragma once

#include <windows.h>

#include <string>

#include "app/transport/CurrentDictation.h"
#include "app/transport/PlayPlan.h"
#include "app/transport/RecordPlan.h"
#include "app/transport/Transport_win.h"
#include "app/window/CommandState.h"
#include "app/window/DictationList_win.h"
#include "app/window/NotesBox_win.h"
#include "app/window/TextLine_win.h"
#include "app/window/TransportSign.h"
#include "send/BGSend.h"
#include "ui/LToolTips.h"
#include "ui/LWin.h"

// The display of the main window besides list and notes: texts, buttons, menu ticks, icon, meters. Also moves
// the focus when its control is disabled or has done its work.
// Units:  positions in ms of the dictation, levels in dB.
// Thread: the window thread.
class WindowDisplay {
public:
    WindowDisplay(const DictationList& list, const Transport& transport, const CurrentDictation& current)
        : m_list(list), m_transport(transport), m_current(current) {}

    // Precondition: the window's controls exist. userName: the name of the logged-on user.
    void Attach(HWND window, const std::string& userName);
    void Detach();
    // Another user has logged on, whose notes are not shown yet.
    void ShowUser(const std::string& userName);

    // Enables and disables buttons and menu items. Something modal that is open does not count.
    void ShowSituation(CommandSituation situation);
    // Shows the first menu of a resource at a point of the screen; returns when it is closed.
    void ShowPopup(int resource, POINT at, const CommandSituation& situation) const;
    // An activity of the transport has started or ended.
    void ShowActivity();
    // Shows name, position and length of the current dictation, and the activity.
    void ShowPosition();
    void ShowLevels(int8_t leftDb, int8_t rightDb);
    // Draws a button or a line of text.
    void DrawItem(const DRAWITEMSTRUCT& item) const;
    // The text of a tool tip that is asked for; empty: none.
    std::string TipOf(HWND control) const;
    // To be called with each message of the thread, for the tool tips.
    void Watch(const MSG& message);
    // Ticks the priority that all selected dictations have.
    void ShowPriority(HMENU menu) const;
    void ShowRecordMode(RecordMode mode);
    void ShowPlaySpeed(PlaySpeed speed);
    // The state of the notes has changed: whether some wait to be saved, and whether those shown can be
    // edited.
    void ShowNotes(const NotesBox& notes);
    // Shows what is sent; after its end for some seconds what was. fraction: of the queue, 0 to 1.
    void ShowSending(const SendActivity& activity, double fraction);
    // The colour scheme has changed.
    void EvColoursChanged();
    // The controls have been placed anew.
    void EvPlaced();
    // Shows the next text of the information line, and takes back what was sent. The line rests while the
    // state line tells a fault: a changing text would draw the eye away from it.
    void ShowNextInfo();

    // Moves the focus to its home: the list, or, in the compact view, which has none, the transport.
    void FocusHome();
    // Takes the focus from a button after its command; otherwise the space bar would press it again.
    // cameFrom: the control that had the focus before the button and gets it back; nullptr: the home.
    void LeaveButton(HWND cameFrom);

private:
    TransportSign RecordSign() const;
    HWND Item(int control) const { return GetDlgItem(m_window, control); }
    std::string Sending() const;
    std::string SendingTo() const;
    void SetLine(int control, const std::string& text) const;
    int LineEnd(int control) const;
    LineColours ColoursOf(int control) const;
    static void EnableCommands(HMENU menu, const CommandSituation& situation);
    void LoadIcons();
    void SetPositionFont();
    void AddToolTips();
    void ShowIcon(bool isRecording);
    bool IsHeld(int control) const;
    int FocusedButton() const;
    const char* Doing() const;
    void ShowState();

    const DictationList& m_list;
    const Transport& m_transport;
    const CurrentDictation& m_current;
    HWND m_window = nullptr;
    LToolTips m_toolTips;
    LFont m_positionFont;
    LIcon m_icons[2][2];  // [recording][small]
    std::string m_loggedOn;
    std::string m_unsaved;      // about notes that could not be saved; empty: none
    std::string m_normalState;  // the text of the state line while nothing is wrong
    SendActivity m_sending;
    int m_sentTicks = 0;     // of the information line, since something was sent
    bool m_isAlarm = false;  // the state line tells a fault
    ViewMode m_view = ViewMode::Normal;
    size_t m_infoText = 0;
    RecordMode m_recordMode = RecordMode::Overwrite;  // of the record button
    bool m_showsRecordingIcon = false;
};
