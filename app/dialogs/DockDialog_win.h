#pragma once

#include <optional>

#include "app/AppState.h"
#include "app/dialogs/SettingsRows_win.h"
#include "app/dialogs/SoundLists_win.h"
#include "app/transport/DockRecording_win.h"
#include "store/DictationFiles.h"
#include "ui/LDialog.h"

// Records a portable recorder that plays into the sound card, as one new dictation. It stands beside the main
// window, which can be used meanwhile, until Done or until it is closed; both keep what was recorded. What it
// asks of the main window goes by WM_DOCKREQUEST.
// Errors: shown in the dialog; a recording that breaks off is told by the owner.
// Thread: the window thread.
class DockDialog final : public LModelessDialog, private DockRecording::Owner {
public:
    class Owner {
    public:
        virtual ~Owner() = default;
        // Before the input is opened: whoever else has it lets go of it.
        virtual void TakeInput() = 0;
        // The main window is recording, or about to.
        virtual bool IsInputTaken() const = 0;
        virtual void TellTrouble(const char* text) = 0;
        // The recording has ended and its file is closed. False when it is empty, and the dictation deleted.
        virtual bool KeepRecorded(const DictationFiles& files) = 0;
    };

    DockDialog(const AppState& state, Owner& owner);

    // Opens the window and begins to record into a dictation of the current user that has no audio yet.
    bool Open(HWND owner, const DictationFiles& files);
    const DictationFiles& Files() const { return m_files; }
    // True only while the request is made whose text this is: the message carries a pointer, which any
    // program could send.
    bool IsMaking(int request, LPARAM text) const;

    // The recording has heard something and goes on.
    bool HoldsInput() const { return m_recording.HoldsDevice(); }
    bool IsListening() const { return m_recording.IsRunning(); }
    // Leaves the input to the main window's recording, as long as nothing was heard; afterwards it listens
    // again.
    void YieldInput();

    bool PreTranslateMessage(MSG& message) override;

private:
    bool InitDialog() override;
    void DestroyDialog() override;
    bool HandleMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) override;
    bool EvCommand(int control, int notification);
    void EvTimer();
    void CmOk();
    void CmRestart();
    void ShowInput();
    void ShowValues() const;
    void ShowState() const;
    DockRecording::Choice Shown() const;
    int8_t Level(int control) const { return static_cast<int8_t>(m_table.NumberOf(control).value_or(0)); }
    bool Refuse();
    bool RefuseSilence();
    bool IsSpeedMeant();
    void Record();
    bool StoreInput() const;
    void Request(int request, const LPath& text);
    bool IsChecked(int control) const { return IsDlgButtonChecked(Window(), control) == BST_CHECKED; }

    void DockLevel(int8_t levelDb) override;
    void DockChanged() override;
    void DockTrouble(const char* text) override { m_owner.TellTrouble(text); }

    const AppState& m_state;
    Owner& m_owner;
    SettingsRows m_rows;
    LControlTable m_table;
    DockRecording m_recording;
    DictationFiles m_files;
    SoundInput m_input;  // as shown first
    InputLineList m_lines{InputLineList::Lines::ForPortable};
    DockRecording::Choice m_recorded;       // with which the recording was begun
    std::optional<int32_t> m_heardPercent;  // the speed of what is in the file; nothing: the file is empty
    bool m_hasYielded = false;
    bool m_sends = false;  // Done was pressed, and the dictation is to be sent
    const char* m_request = nullptr;
};
