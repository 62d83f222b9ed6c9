// Commands that come without a menu: command indexes of devices, buttons of the dictation microphone, and
// requests of other programs.

#include "app/window/HoldButton_win.h"
#include "app/window/MainDialog_win.h"
#include "base/LPath.h"
#include "base/LTime.h"
#include "base/LTrace.h"
#include "res/Ids.h"

// ---- Command indexes -------------------------------------------------------------------------------------

// In the order of the indexes.
const MainDialog::IndexEntry MainDialog::kIndexes[] = {
    {CI_NONE, &MainDialog::PressNothing, IndexEntry::Release::Nothing},
    {CI_OPEN, &MainDialog::PressOpen, IndexEntry::Release::Nothing},
    {CI_MINIMIZE, &MainDialog::PressMinimize, IndexEntry::Release::Nothing},
    {CI_RECORD, &MainDialog::PressRecord, IndexEntry::Release::HoldRule},
    {CI_PLAY, &MainDialog::PressPlay, IndexEntry::Release::HoldRule},
    {CI_GOTOSTART, &MainDialog::PressGoTo, IndexEntry::Release::Nothing},
    {CI_GOTOEND, &MainDialog::PressGoTo, IndexEntry::Release::Nothing},
    {CI_REWIND, &MainDialog::PressWind, IndexEntry::Release::Button},
    {CI_FASTFORWARD, &MainDialog::PressWind, IndexEntry::Release::Button},
    {CI_NEW, &MainDialog::PressNew, IndexEntry::Release::Nothing},
    {CI_SEND, &MainDialog::PressSend, IndexEntry::Release::Nothing},
    {CI_SENDHIGH, &MainDialog::PressSend, IndexEntry::Release::Nothing},
    {CI_RECORD_OVERWRITE, &MainDialog::PressRecord, IndexEntry::Release::HoldRule},
    {CI_RECORD_INSERT, &MainDialog::PressRecord, IndexEntry::Release::HoldRule},
    {CI_RECORD_END, &MainDialog::PressRecord, IndexEntry::Release::HoldRule},
};

const MainDialog::IndexEntry* MainDialog::FindIndex(int index) {
    for (const IndexEntry& entry : kIndexes)
        if (entry.index == index) return &entry;
    LTrace("MainDialog::FindIndex invalid command");
    return nullptr;
}

bool MainDialog::CommandPress(int index) {
    const IndexEntry* entry = FindIndex(index);
    if (entry == nullptr || !BeginCommand() || !(this->*entry->press)(index)) return false;
    if (entry->release == IndexEntry::Release::HoldRule) m_hold.Press(LTickMs());
    return true;
}

void MainDialog::CommandRelease(int index, uint32_t holdLimitMs) {
    const IndexEntry* entry = FindIndex(index);
    if (entry == nullptr) return;
    if (entry->release == IndexEntry::Release::Button) ReleaseHoldButton(WindButton(index));
    if (entry->release == IndexEntry::Release::HoldRule && m_hold.ReleaseStops(LTickMs(), holdLimitMs))
        FinishRunning();
}

bool MainDialog::PressNothing(int) {
    return false;
}

bool MainDialog::PressOpen(int) {
    OpenWindow();
    return true;
}

bool MainDialog::PressMinimize(int) {
    ShowWindow(Window(), SW_MINIMIZE);
    return true;
}

// The time of the press counts from the start of the recording: opening a slow device must not turn a tap
// into a hold.
bool MainDialog::PressRecord(int index) {
    if (m_transport.IsRecording()) return false;
    const RecordMode mode =
        index == CI_RECORD ? DefaultRecordMode() : static_cast<RecordMode>(index - CI_RECORD_OVERWRITE);
    return m_transport.Record(mode);
}

bool MainDialog::PressPlay(int) {
    return m_transport.Play();
}

HWND MainDialog::WindButton(int index) const {
    return Item(index == CI_REWIND ? IDC_REWIND : IDC_FASTFORWARD);
}

bool MainDialog::PressWind(int index) {
    return PressHoldButton(WindButton(index));
}

bool MainDialog::PressGoTo(int index) {
    if (index == CI_GOTOSTART)
        m_transport.GoToStart();
    else
        m_transport.GoToEnd();
    return true;
}

bool MainDialog::PressNew(int) {
    CmNewFile(CM_NEWFILE);
    return true;
}

bool MainDialog::PressSend(int index) {
    if (index == CI_SENDHIGH) SetPriority("High");
    CmSendFile(CM_SENDFILE);
    return true;
}

// ---- Dictation microphone --------------------------------------------------------------------------------

namespace {

enum class MicAction {
    Stop,
    PressUnlessRecording,
    ReleaseWhilePlaying,
    RecordPress,
    RecordRelease,
    Send,
    Press,
    Release
};

struct MicButton {
    int code;
    MicAction action;
    int index;
};

// The button codes that the microphone's control device sends.
constexpr MicButton kMicButtons[] = {
    {2, MicAction::Stop, CI_NONE},
    {4, MicAction::PressUnlessRecording, CI_PLAY},
    {5, MicAction::ReleaseWhilePlaying, CI_PLAY},
    {6, MicAction::RecordPress, CI_RECORD},
    {7, MicAction::RecordRelease, CI_RECORD},
    {10, MicAction::Send, CI_SEND},
    {12, MicAction::Press, CI_REWIND},
    {13, MicAction::Release, CI_REWIND},
    {14, MicAction::Press, CI_FASTFORWARD},
    {15, MicAction::Release, CI_FASTFORWARD},
    {20, MicAction::PressUnlessRecording, CI_PLAY},
    {21, MicAction::ReleaseWhilePlaying, CI_PLAY},
};

}  // namespace

bool MainDialog::EvMicButton(WPARAM wParam, LPARAM, LRESULT& result) {
    result = 0;
    for (const MicButton& button : kMicButtons) {
        if (button.code != LOWORD(wParam)) continue;
        switch (button.action) {
            case MicAction::Stop:
                if (!m_micRecordHeld) FinishRunning();
                break;
            case MicAction::PressUnlessRecording:
                if (!m_transport.IsRecording()) CommandPress(button.index);
                break;
            case MicAction::ReleaseWhilePlaying:
                if (m_transport.IsPlaying()) CommandRelease(button.index, kHoldLimitMs);
                break;
            case MicAction::RecordPress:
                m_micRecordHeld = true;
                CommandPress(button.index);
                break;
            case MicAction::RecordRelease:
                m_micRecordHeld = false;
                CommandRelease(button.index, kHoldLimitMs);
                break;
            case MicAction::Send:
            case MicAction::Press:
                CommandPress(button.index);
                break;
            case MicAction::Release:
                CommandRelease(button.index, kHoldLimitMs);
                break;
        }
        break;
    }
    return true;
}

// ---- Other programs --------------------------------------------------------------------------------------

// In the order of the commands.
const MainDialog::ApiEntry MainDialog::kApi[] = {
    {0, &MainDialog::ApiPresent},     {1, &MainDialog::ApiOpen},    {2, &MainDialog::ApiMinimize},
    {3, &MainDialog::ApiClose},       {4, &MainDialog::ApiNew},     {5, &MainDialog::ApiRename},
    {6, &MainDialog::ApiAppendNotes}, {7, &MainDialog::ApiStatus},  {8, &MainDialog::ApiNumber},
    {9, &MainDialog::ApiSend},        {10, &MainDialog::ApiDelete},
};

bool MainDialog::EvAPICommand(WPARAM wParam, LPARAM lParam, LRESULT& result) {
    result = 0;
    for (const ApiEntry& entry : kApi) {
        if (entry.command != wParam) continue;
        // The presence test, opening, minimizing and closing are answered at any time.
        if (entry.command > 3 && !BeginCommand()) return true;
        result = (this->*entry.handle)(lParam);
        return true;
    }
    LTrace("MainDialog::EvAPICommand Invalid Command");
    return true;
}

// The text of a global atom, at most 260 bytes with its zero; empty when there is no such atom.
static std::string AtomText(LPARAM argument) {
    constexpr LPARAM kFirstTextAtom = 0xC000;
    constexpr LPARAM kLastTextAtom = 0xFFFF;
    char text[kPathSize] = {};
    if (argument < kFirstTextAtom || argument > kLastTextAtom) return {};
    if (GlobalGetAtomNameA(static_cast<ATOM>(argument), text, sizeof text) == 0) return {};
    return text;
}

LRESULT MainDialog::ApiPresent(LPARAM) {
    return 1;
}

LRESULT MainDialog::ApiOpen(LPARAM) {
    OpenWindow();
    return 0;
}

LRESULT MainDialog::ApiMinimize(LPARAM) {
    ShowWindow(Window(), SW_MINIMIZE);
    return 0;
}

LRESULT MainDialog::ApiClose(LPARAM) {
    PostMessageA(Window(), WM_CLOSE, 0, 0);
    return 0;
}

LRESULT MainDialog::ApiNew(LPARAM) {
    CmNewFile(CM_NEWFILE);
    return 0;
}

LRESULT MainDialog::ApiRename(LPARAM argument) {
    const std::string name = AtomText(argument);
    const std::optional<DictationFiles> current = m_list.Current();
    if (!current || name.empty()) return 0;
    FinishRunning();
    m_list.Rename(*current, name);
    ShowPosition();
    return 0;
}

LRESULT MainDialog::ApiAppendNotes(LPARAM argument) {
    m_notes.Append(AtomText(argument));
    return 0;
}

// 0 stopped, 1 recording, 2 waiting for the speaker's voice, 3 playing, 4 winding.
LRESULT MainDialog::ApiStatus(LPARAM) {
    if (m_transport.IsRecording()) return m_transport.IsWaiting() ? 2 : 1;
    if (m_transport.IsPlaying()) return 3;
    return m_transport.IsWinding() ? 4 : 0;
}

LRESULT MainDialog::ApiNumber(LPARAM) {
    return m_list.CurrentNumber();
}

LRESULT MainDialog::ApiSend(LPARAM) {
    CmSendFile(CM_SENDFILE);
    return 0;
}

LRESULT MainDialog::ApiDelete(LPARAM) {
    CmDeleteFile(CM_DELETEFILE);
    return 0;
}
