#pragma once

#include <windows.h>

#include <string>

#include "app/transport/CurrentDictation.h"
#include "app/transport/PlayPlan.h"
#include "app/transport/RecordPlan.h"
#include "app/transport/Transport_win.h"
#include "app/window/CommandState.h"
#include "app/window/DictationList_win.h"
#include "ui/LToolTips.h"
#include "ui/LWin.h"

// What the main window shows besides the list and the notes: texts, buttons, menu ticks, icon, meters, and where the
// keyboard goes when the control that had it no longer listens.
// Thread: the window thread.
class WindowDisplay {
public:
    WindowDisplay(const DictationList& list, const Transport& transport, const CurrentDictation& current)
        : m_list(list), m_transport(transport), m_current(current) {}

    // The window's controls exist. userName: who is logged on.
    void Attach(HWND window, const std::string& userName);
    void Detach();

    // Which buttons and menu items can be given; what stands before the window at the moment does not count.
    void ShowSituation(CommandSituation situation);
    // The first menu of a resource, at a place of the screen; returns when it is closed.
    void ShowPopup(int resource, POINT at, const CommandSituation& situation) const;
    // What runs has begun or ended.
    void ShowActivity();
    // Name, position and length of the current dictation, and what is being done with it.
    void ShowPosition();
    void ShowLevels(int8_t leftDb, int8_t rightDb);
    void DrawButton(const DRAWITEMSTRUCT& item) const;
    void ShowRecordMode(RecordMode mode);
    void ShowPlaySpeed(PlaySpeed speed);
    // The dictation whose notes could not be saved, empty when there is none: in place of who is logged on.
    void ShowUnsaved(const std::string& name);
    // fraction: 0 to 1.
    void ShowSendProgress(double fraction);
    // The next of the texts of the information line.
    void ShowNextInfo();

    // Where the keyboard is at home in a view: on the list, or on the transport where there is none.
    void FocusHome();
    // A button that had its say must not take the next press of the space bar. cameFrom: the control that had the
    // keyboard before the button and gets it back; nullptr: it goes home.
    void LeaveButton(HWND cameFrom);

private:
    HWND Item(int control) const { return GetDlgItem(m_window, control); }
    static void EnableCommands(HMENU menu, const CommandSituation& situation);
    void LoadIcons();
    void SetPositionFont();
    void AddToolTips();
    void ShowIcon(bool isRecording);
    bool IsHeld(int control) const;
    int FocusedButton() const;
    const char* Doing() const;

    const DictationList& m_list;
    const Transport& m_transport;
    const CurrentDictation& m_current;
    HWND m_window = nullptr;
    LToolTips m_toolTips;
    LFont m_positionFont;
    LIcon m_icons[2][2];  // [recording][small]
    std::string m_loggedOn;
    ViewMode m_view = ViewMode::Normal;
    size_t m_infoText = 0;
    bool m_showsInsert = false;  // on the record button
    bool m_showsRecordingIcon = false;
};
