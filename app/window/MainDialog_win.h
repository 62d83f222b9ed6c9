#pragma once

#include <atomic>
#include <functional>

#include "app/AppState.h"
#include "app/transport/HoldRule.h"
#include "app/transport/Transport_win.h"
#include "app/window/CommandState.h"
#include "app/window/DictationList_win.h"
#include "app/window/NotesBox_win.h"
#include "app/window/SendCommands_win.h"
#include "app/window/WindowLayout_win.h"
#include "send/BGSend.h"
#include "ui/LDialog.h"
#include "ui/LIntroduction.h"
#include "ui/LSplash.h"
#include "ui/LToolTips.h"

// The program's one top-level window. It owns the window, the timers and the dispatch tables; the work lives
// in the classes it is made of. Every command ends here, on the window thread: menu, button and shortcut by
// command number, devices by command index through CommandPress and CommandRelease, other programs by
// EvAPICommand.
class MainDialog final : public LModelessDialog,
                         private DictationList::Owner,
                         private Transport::Owner,
                         private BGSendOwner {
public:
    explicit MainDialog(AppState& state);
    ~MainDialog() override;

    // Device-independent commands, 0 to 14. True when a press was accepted and wants its release.
    bool CommandPress(int index);
    void CommandRelease(int index, uint32_t holdLimitMs);

    // Called once, when the window stands.
    void OnCreated(std::function<void()> callback) { m_onCreated = std::move(callback); }

    // ms, taken just before the window is made.
    void SetStartTick(uint32_t tick) { m_startTick = tick; }

    // False when the send thread still runs: its entry stays in the queue, and the process must not wait for
    // it.
    bool SendThreadEnded() const { return m_sendThreadEnded; }

    bool PreTranslateMessage(MSG& message) override;

private:
    struct MessageEntry {
        UINT message;
        bool (MainDialog::*handle)(WPARAM wParam, LPARAM lParam, LRESULT& result);
    };
    struct CommandEntry {
        int first;
        int last;
        void (MainDialog::*handle)(int command);
    };
    struct TimerEntry {
        UINT_PTR timer;
        void (MainDialog::*handle)();
    };
    struct IndexEntry {
        int index;
        bool (MainDialog::*press)(int index);
        enum class Release { Nothing, HoldRule, Button } release;
    };
    struct ApiEntry {
        WPARAM command;
        LRESULT (MainDialog::*handle)(LPARAM argument);
    };
    static const MessageEntry kMessages[];
    static const CommandEntry kCommands[];
    static const TimerEntry kTimers[];
    static const IndexEntry kIndexes[];
    static const ApiEntry kApi[];
    static const IndexEntry* FindIndex(int index);

    // Life
    bool InitDialog() override;
    void DestroyDialog() override;
    void LoadIcons();
    void SetPositionFont();
    void ShowPopup(int resource, POINT at);
    void InitToolTips();
    void RecoverLeftovers();
    void StartSending();
    void CloseWindow();

    // Messages
    bool HandleMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) override;
    bool EvActivate(WPARAM wParam, LPARAM, LRESULT& result);
    bool EvClose(WPARAM, LPARAM, LRESULT& result);
    bool EvCommand(WPARAM wParam, LPARAM lParam, LRESULT& result);
    bool EvContextMenu(WPARAM wParam, LPARAM lParam, LRESULT& result);
    bool EvDrag(WPARAM, LPARAM, LRESULT& result);
    bool EvDragEnd(WPARAM, LPARAM, LRESULT& result);
    bool EvDrawItem(WPARAM, LPARAM lParam, LRESULT& result);
    bool EvEndSession(WPARAM wParam, LPARAM, LRESULT& result);
    bool EvGetMinMaxInfo(WPARAM, LPARAM lParam, LRESULT& result);
    bool EvHoldButton(WPARAM wParam, LPARAM lParam, LRESULT& result);
    bool EvMenuLoop(WPARAM, LPARAM, LRESULT&);
    bool EvMicButton(WPARAM wParam, LPARAM, LRESULT& result);
    bool EvMove(WPARAM, LPARAM, LRESULT& result);
    bool EvNotify(WPARAM, LPARAM lParam, LRESULT& result);
    bool EvQueryEndSession(WPARAM, LPARAM, LRESULT& result);
    bool EvTransportTrouble(WPARAM, LPARAM, LRESULT& result);
    bool EvRowChanged(WPARAM, LPARAM, LRESULT& result);
    bool EvSelectionMoved(WPARAM, LPARAM, LRESULT& result);
    bool EvSendProgress(WPARAM, LPARAM, LRESULT& result);
    bool EvSize(WPARAM wParam, LPARAM, LRESULT& result);
    bool EvTimer(WPARAM wParam, LPARAM, LRESULT& result);
    bool EvAPICommand(WPARAM wParam, LPARAM lParam, LRESULT& result);

    // Before any command: refused while a process runs or the window is about to close. What the list, the
    // notes and the transport work on is the same dictation afterwards.
    bool BeginCommand();

    // Commands
    void RunCommand(int command);
    void CmNewFile(int command);
    void CmSendFile(int command);
    void CmRenameFile(int command);
    void CmDeleteFile(int command);
    void CmSetPriority(int command);
    void CmExit(int command);
    void CmRecord(int command);
    void CmFileRecordMode(int command);
    void CmRecordMode(int command);
    void CmPlay(int command);
    void CmPlaySpeed(int command);
    void CmStop(int command);
    void CmWind(int command);
    void CmGoToStart(int command);
    void CmGoToEnd(int command);
    void CmView(int command);
    void CmFloat(int command);
    void CmAbout(int command);
    void CmInformation(int command);

    // Presses of command indexes
    bool PressNothing(int index);
    bool PressOpen(int index);
    bool PressMinimize(int index);
    bool PressRecord(int index);
    bool PressPlay(int index);
    bool PressWind(int index);
    bool PressGoTo(int index);
    bool PressNew(int index);
    bool PressSend(int index);

    // Commands of other programs
    LRESULT ApiPresent(LPARAM argument);
    LRESULT ApiOpen(LPARAM argument);
    LRESULT ApiMinimize(LPARAM argument);
    LRESULT ApiClose(LPARAM argument);
    LRESULT ApiNew(LPARAM argument);
    LRESULT ApiRename(LPARAM argument);
    LRESULT ApiAppendNotes(LPARAM argument);
    LRESULT ApiStatus(LPARAM argument);
    LRESULT ApiNumber(LPARAM argument);
    LRESULT ApiSend(LPARAM argument);
    LRESULT ApiDelete(LPARAM argument);

    // Timers
    void EvTimerInfoLine();
    void EvTimerSaveNotes();
    void ShowSendError();

    // The work behind several commands
    void FinishRunning();
    void SaveNotes();
    bool CreateDictation();
    void Send(const std::vector<DictationFiles>& selected, int recipient);
    void SetPriority(std::string_view priority);
    void OpenWindow();
    void ApplyRecordMode();
    void ShowPlaySpeed();
    bool IsNameEditor(HWND control) const;
    bool WindByKey(const MSG& message);
    void ReleaseWindKey();
    HWND WindButton(int index) const;
    RecordMode DefaultRecordMode() const;
    void TestHardDrive();
    void DeleteOldFiles();
    CommandSituation Situation() const;
    void EnableCommands(HMENU menu) const;
    void PostRowChanged(const DictationFiles& files);
    void ApplyRowChanges();
    void ShowFocus();
    void ShowSituation();
    bool IsHeld(int control) const;
    const char* Doing() const;
    void ShowIcon(int resource);
    void ShowPosition();

    // DictationList::Owner
    void FileChanged() override;
    void SelectionMoved() override;
    void PlayFromStart() override;
    void BeforeRename() override;
    void AfterRename(int32_t number) override;
    // Transport::Owner
    std::optional<DictationFiles> DictationToRecord() override;
    void ActivityChanged() override;
    void RecordingStopped(const DictationFiles& files) override;
    void PositionChanged() override { ShowPosition(); }
    void LevelChanged(int8_t leftDb, int8_t rightDb) override;
    void TransportTrouble(const std::string& text) override;
    HWND OwnerWindow() const override { return Window(); }
    bool MayGoOn() override;
    // BGSendOwner, called on the send thread
    void PostSendProgress() override;

    AppState& m_state;
    HACCEL m_accelerators = nullptr;      // of the resources, freed by the platform
    std::atomic<HWND> m_postTo{nullptr};  // read by the send thread
    BGSend m_queue;
    DictationList m_list;
    NotesBox m_notes;
    Transport m_transport;
    SendCommands m_send;
    WindowLayout m_layout;
    LToolTips m_toolTips;
    LSplash m_splash;
    LIntroduction m_introduction;
    HoldRule m_hold;
    LFont m_positionFont;
    std::function<void()> m_onCreated;
    std::vector<std::string> m_troubles;  // shown once what they came from is over
    LIcon m_icons[2][2];                  // [recording][small]
    std::vector<int32_t> m_changedRows;   // to be made anew when nobody is in the middle of the list
    size_t m_infoText = 0;
    uint32_t m_startTick = 0;
    bool m_selectionMoved = false;
    bool m_showsInsert = false;  // on the record button
    bool m_micRecordHeld = false;
    bool m_showsRecordingIcon = false;
    WPARAM m_windKey = 0;        // held down
    bool m_closeWanted = false;  // asked for while a process ran
    bool m_isClosing = false;
    bool m_sendThreadEnded = true;
};
