#pragma once

#include <atomic>
#include <functional>
#include <vector>

#include "app/AppState.h"
#include "app/import/FileImport_win.h"
#include "app/transport/CurrentDictation.h"
#include "app/transport/Listening_win.h"
#include "app/transport/Transport_win.h"
#include "app/window/ApiCommands_win.h"
#include "app/window/CommandState.h"
#include "app/window/DeviceCommands.h"
#include "app/window/DictationCommands_win.h"
#include "app/window/DictationList_win.h"
#include "app/window/DockCommands_win.h"
#include "app/window/Help_win.h"
#include "app/window/HotKeys_win.h"
#include "app/window/InsertOffers_win.h"
#include "app/window/Keyboard_win.h"
#include "app/window/NotesBox_win.h"
#include "app/window/Pedals_win.h"
#include "app/window/SentCommands_win.h"
#include "app/window/WindowDisplay_win.h"
#include "app/window/WindowLayout_win.h"
#include "base/LFileLock.h"
#include "hardware/DictationMicrophone_win.h"
#include "send/BGSend.h"
#include "store/DictationFiles.h"
#include "ui/LDialog.h"
#include "ui/LIntroduction.h"
#include "ui/LModalRunner.h"
#include "ui/LSplash.h"

// The program's one top-level window. It owns the window handle, the timers, the dispatch tables and the
// order of start and end; the work lies in its members, which call back through small private interfaces.
// Every command ends in Give, on the window thread: from menu, buttons and keys, from devices
// (DeviceCommands) and from other programs (ApiCommands).
// Thread: the window thread, but for PostSendProgress (send thread).
class MainDialog final : public LModelessDialog,
                         private DictationList::Owner,
                         private NotesBox::Owner,
                         private Transport::Owner,
                         private DeviceCommands::Target,
                         private ApiCommands::Target,
                         private Keyboard::Target,
                         private FileImport::Owner,
                         private BGSendOwner {
public:
    explicit MainDialog(AppState& state);
    ~MainDialog() override;

    // callback is called once, when the window exists.
    void OnCreated(std::function<void()> callback) { m_onCreated = std::move(callback); }

    // Tick count in ms just before the window is created, for the trace of the start-up time.
    void SetStartTick(uint32_t tick) { m_startTick = tick; }

    // False when the send thread, or the one that collects typists' reports, did not end in time. What they
    // worked on stays as it was, and the process must end without them.
    bool SendThreadEnded() const { return m_sendThreadEnded; }

    bool PreTranslateMessage(MSG& message) override;

private:
    struct AskedEntry {
        UINT message;
        bool (MainDialog::*handle)(WPARAM wParam, LPARAM lParam, LRESULT& result);
    };
    struct MessageEntry {
        UINT message;
        void (MainDialog::*handle)(WPARAM wParam, LPARAM lParam);
    };
    struct CommandEntry {
        int first;
        int last;
        bool (*give)(MainDialog& dialog, int command);
    };
    struct TimerEntry {
        UINT_PTR timer;
        void (MainDialog::*handle)();
    };
    static const AskedEntry kAsked[];
    static const MessageEntry kMessages[];
    static const CommandEntry kCommands[];
    static const TimerEntry kTimers[];

    // Life
    bool InitDialog() override;
    void DestroyDialog() override;
    void TakeUserFolder();
    bool FillList();
    void LookAfterUser();
    bool MayClose();
    void CloseWindow();

    // Messages
    bool HandleMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) override;
    bool EvActivate(WPARAM wParam, LPARAM, LRESULT& result);
    void EvClose(WPARAM, LPARAM);
    void EvCommand(WPARAM wParam, LPARAM lParam);
    bool EvContextMenu(WPARAM wParam, LPARAM lParam, LRESULT& result);
    bool EvAppCommand(WPARAM, LPARAM lParam, LRESULT& result);
    void EvColoursChanged(WPARAM, LPARAM);
    bool EvInitMenuPopup(WPARAM wParam, LPARAM, LRESULT&);
    bool IsBesideRows(const MSG& message);
    bool AskTip(const NMHDR& header, LRESULT& result);
    bool EvDeviceChange(WPARAM wParam, LPARAM, LRESULT& result);
    void EvDockRequest(WPARAM wParam, LPARAM lParam) { m_dock.EvRequest(static_cast<int>(wParam), lParam); }
    void EvDrag(WPARAM, LPARAM);
    void EvDragEnd(WPARAM, LPARAM);
    bool EvDrawItem(WPARAM, LPARAM lParam, LRESULT& result);
    void EvEndSession(WPARAM wParam, LPARAM);
    void EvGetMinMaxInfo(WPARAM, LPARAM lParam);
    void EvHelp(WPARAM, LPARAM);
    void EvHelpNotShown(WPARAM wParam, LPARAM);
    void EvInsertKept(WPARAM, LPARAM);
    void EvHoldButton(WPARAM wParam, LPARAM lParam);
    void EvHotKey(WPARAM wParam, LPARAM) { m_hotKeys.EvHotKey(static_cast<int>(wParam)); }
    bool EvMenuLoop(WPARAM, LPARAM, LRESULT&);
    bool EvMenuLoopEnd(WPARAM, LPARAM, LRESULT&);
    void EvMicLost(WPARAM, LPARAM) { m_devices.ReleaseMic(); }
    void EvMove(WPARAM, LPARAM);
    bool EvNotify(WPARAM, LPARAM lParam, LRESULT& result);
    bool EvQueryEndSession(WPARAM, LPARAM, LRESULT& result);
    void EvRowChanged(WPARAM, LPARAM);
    void EvSelectionMoved(WPARAM, LPARAM);
    void EvSendProgress(WPARAM, LPARAM);
    void EvShowLater(WPARAM, LPARAM);
    void EvSize(WPARAM wParam, LPARAM);
    void EvSpeechMikeControl(WPARAM wParam, LPARAM);
    void EvTimer(WPARAM wParam, LPARAM);
    bool EvAPICommand(WPARAM wParam, LPARAM lParam, LRESULT& result);

    // Timers
    void EvTimerInfoLine();
    void EvTimerSaveNotes() { m_notes.Save(); }
    void EvTimerStoppedTone();
    void RepeatStoppedTone();
    void EvTimerHotKey() { m_hotKeys.EvTimer(); }
    void EvTimerHardware() { m_pedals.EvTimer(); }
    void EvTimerDevices();
    void EvTimerShowLater() { EvShowLater(0, 0); }
    void EvTimerSendShown();
    // Something is recorded, played or wound, also a sent dictation.
    bool IsRunning() const { return m_transport.IsRunning() || m_sent.IsPlaying(); }
    // A box would close the menu, or end the editing of a name.
    bool IsHandBusy() const { return m_isMenuOpen || m_list.IsRenaming(); }

    // Commands
    CommandSituation Situation() const;
    void LeaveButton();
    bool Wind(WindDirection direction, bool isDown);
    bool SetRecordMode(RecordMode mode);
    bool SetPlaySpeed(PlaySpeed speed);
    bool SetView(ViewMode view);
    bool Dock();
    bool ShowHardwareSettings();
    bool RecoverSent();
    bool LoadFiles(bool send);
    bool TransferFiles();
    void SelectLoaded(std::vector<LPath> loaded);
    bool ShowAbout();
    bool OpenWebPage(int command);
    bool CmHelp() { return m_help.Show(); }
    RecordMode DefaultRecordMode() const;

    // Users
    bool LogOnAsOther();
    bool EditUserSettings();
    bool MayLeaveUser();
    void ChangeUser(uint32_t user);

    // The selection decides on the current dictation, and everything shown follows.
    void FollowSelection();
    // Follows a pending change of the selection now.
    void SettleSelection();

    // DictationList::Owner
    void FileChanged() override { FollowSelection(); }
    void SelectionMoved() override;
    void PlayFromStart() override;
    void BeforeRename() override;
    void AfterRename(bool isLost) override;
    // NotesBox::Owner
    void NotesSaved(const LPath& notesFile) override {
        m_list.UpdateLater(DictationFiles::OfPath(notesFile).record);
    }
    void TypedForNothing(const LPath& notesFile) override {
        m_list.UpdateLater(DictationFiles::OfPath(notesFile).record);
    }
    void NotesStateChanged() override;
    // What uses the sound devices beside the transport.
    void StopOtherSound() {
        m_listening.Stop();
        m_sent.StopPlaying();
    }
    // Transport::Owner
    bool HaveDictation() override {
        if (m_dock.KeepsInput()) return false;
        StopOtherSound();
        return m_current ? IsDictationThere() : m_dictations.Create();
    }
    bool IsDictationThere() override {
        StopOtherSound();
        return !m_current || !m_dictations.DropGone({*m_current.Files()});
    }
    bool SettleInsert() override { return m_current && m_inserts.OfferOrTell(*m_current.Files()); }
    void InsertKept(const DictationFiles& files) override;
    void ActivityChanged() override;
    void RowOutdated(const DictationFiles& files) override { m_list.UpdateLater(files.record); }
    void PositionChanged() override;
    void LevelChanged(int8_t leftDb, int8_t rightDb) override { m_display.ShowLevels(leftDb, rightDb); }
    // CommandTarget
    bool Give(int command) override;
    // DeviceCommands::Target
    bool IsRecording() const override { return m_transport.IsRecording(); }
    bool IsPlaying() const override { return m_transport.IsPlaying() || m_sent.IsPlaying(); }
    bool IsProcessRunning() const override { return m_runner.OpenModal() == LModalRunner::Modal::Process; }
    bool HoldWinding(WindDirection direction, bool isDown) override;
    void OpenWindow() override;
    void TellWaiting() override { MessageBeep(MB_ICONEXCLAMATION); }
    void MinimizeWindow() override { ShowWindow(Window(), SW_MINIMIZE); }
    // ApiCommands::Target
    void CloseLater() override { PostMessageA(Window(), WM_CLOSE, 0, 0); }
    bool MayChange() override;
    void RenameCurrent(std::string_view name) override { m_dictations.Rename(name); }
    void AppendNotes(std::string_view text) override;
    void SendCurrent() override { m_dictations.SendCurrent(); }
    void DeleteCurrent() override { m_dictations.DeleteCurrent(); }
    int Status() const override;
    int32_t CurrentNumber() override;
    // Keyboard::Target
    void WindByKey(WindDirection direction, bool isDown) override { Wind(direction, isDown); }
    void SelectAllRows() override;
    void PlayRow() override { PlayFromStart(); }
    // FileImport::Owner
    bool IsNumberListed(int32_t number) const override { return m_list.HoldsNumber(number); }
    void ListLoaded(const DictationFiles& files) override {
        m_list.AddFile(files.record);
        m_loaded.push_back(files.record);
    }
    bool SendLoaded(const DictationFiles& files) override { return m_dictations.SendLoaded(files); }
    // BGSendOwner, called on the send thread
    void PostSendProgress() override;

    AppState& m_state;
    std::atomic<HWND> m_postTo{nullptr};  // target of posts by the send thread; null while there is no window
    std::atomic<bool> m_isSendPosted{false};  // what is posted, or shown within kSendShownMs, is the latest
    LModalRunner m_runner;
    BGSend m_queue;
    // Lock of the user's folder. Only its holder repairs left-overs; another session's unfinished work would
    // look like one.
    LFileLock m_inUse;
    CurrentDictation m_current;
    DictationList m_list;
    NotesBox m_notes;
    Transport m_transport;
    InsertOffers m_inserts;
    Listening m_listening;  // for the level meter of the settings
    DictationCommands m_dictations;
    FileImport m_import;
    std::vector<LPath> m_loaded;  // what it has listed since the last transfer began
    SentCommands m_sent;
    DockCommands m_dock;
    DeviceCommands m_devices;
    HotKeys m_hotKeys;
    Pedals m_pedals;
    DictationMicrophone m_microphone;
    ApiCommands m_api;
    Keyboard m_keyboard;
    Help m_help;
    WindowLayout m_layout;
    WindowDisplay m_display;
    LSplash m_splash;
    LIntroduction m_introduction;
    std::function<void()> m_onCreated;
    uint32_t m_startTick = 0;
    bool m_selectionMoved = false;
    bool m_isMenuOpen = false;
    NewPress m_mediaPress;
    int m_mediaKey = 0;
    bool m_wasTyping = false;  // when the name editor was opened
    std::string m_tip;         // the tool tip that is shown
    bool m_isClosing = false;
    bool m_sendThreadEnded = true;
};
