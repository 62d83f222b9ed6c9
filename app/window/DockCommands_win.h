#pragma once

#include <functional>
#include <vector>

#include "app/AppState.h"
#include "app/dialogs/DockDialog_win.h"
#include "app/transport/Listening_win.h"
#include "app/window/DictationCommands_win.h"
#include "store/StagedDictation.h"

// The two ways in which dictations come from a portable recorder: recording it (DockDialog), and the transfer
// of its files (DockTransfer).
// Errors: reported to the user.
// Thread: the window thread.
class DockCommands final : private DockDialog::Owner {
public:
    // One audio file becomes a dictation, and is sent if asked to; see DockTransfer::Host::Load.
    using LoadFile = std::function<LoadedFile(const LPath& file, bool& sends)>;

    DockCommands(const AppState& state, LModalRunner& runner, DictationCommands& dictations,
                 DictationList& list, Transport& transport, Listening& listening, LoadFile load)
        : m_state(state),
          m_runner(runner),
          m_dictations(dictations),
          m_list(list),
          m_transport(transport),
          m_listening(listening),
          m_load(std::move(load)),
          m_dialog(state, *this) {}

    void Attach(HWND window) { m_window = window; }

    // Opens the recording dialog, or brings it to the front.
    bool Cable();
    // Asks for the folder and transfers its files.
    bool Transfer();
    // WM_DOCKREQUEST. Requests that change the list wait while something modal stands.
    void EvRequest(int request, LPARAM text);
    // Carries out requests that wait, unless they have to go on waiting: sending stops the transport, so it
    // waits for the transport's own end.
    void Settle();
    void ShowButton() const;

    // Before a recording by the microphone: true when a portable recorder is being recorded, and the user is
    // told. One that is only waited for gives the input up.
    bool KeepsInput();
    // The sound card's input is open.
    bool IsListening() const { return m_dialog.IsListening(); }
    // Takes the row of a recording that is not ended out of a list that was filled anew.
    void HideRow() {
        if (m_dialog.IsOpen()) m_list.RemoveFiles({m_dialog.Files()});
    }
    // Ends a recording as closing its dialog does, and the transport; what waits is carried out now.
    void Finish();
    bool PreTranslateMessage(MSG& message) { return m_dialog.PreTranslateMessage(message); }

private:
    struct Request {
        LPath record;
        bool sends = false;
    };

    // Now: even while a recording is about to start, which cannot be stopped yet.
    enum class Sends { AtRest, Now };
    void CarryOut(Sends sends);
    void SelectAdded();

    // DockDialog::Owner
    void TakeInput() override;
    bool IsInputTaken() const override { return m_transport.TakesInput(); }
    void TellTrouble(const char* text) override { m_runner.TellAtRest(text); }
    bool KeepRecorded(const DictationFiles& files) override;

    const AppState& m_state;
    LModalRunner& m_runner;
    DictationCommands& m_dictations;
    DictationList& m_list;
    Transport& m_transport;
    Listening& m_listening;
    LoadFile m_load;
    HWND m_window = nullptr;
    std::vector<Request> m_requests;
    LPath m_added;  // the last row that was added
    DockDialog m_dialog;
};
