#pragma once

#include <optional>
#include <string>
#include <vector>

#include "app/AppState.h"
#include "app/dialogs/RecoverDialog_win.h"
#include "app/transport/CurrentDictation.h"
#include "app/transport/Transport_win.h"
#include "app/window/DictationList_win.h"
#include "app/window/NotesBox_win.h"
#include "send/BGSend.h"
#include "store/CollectStatus.h"
#include "store/SentHistory.h"
#include "ui/LModalRunner.h"

// Commands on dictations that were sent: shows them with what waits in the queue, brings them back, plays
// them meanwhile, and collects what the typists report. The transport is stopped and the notes are saved
// first.
// Errors: reported to the user.
// Thread: the window thread.
class SentCommands final : private RecoverDialog::Owner {
public:
    SentCommands(const AppState& state, LModalRunner& runner, BGSend& queue, DictationList& list,
                 NotesBox& notes, Transport& transport, const CurrentDictation& current)
        : m_state(state),
          m_runner(runner),
          m_queue(queue),
          m_list(list),
          m_notes(notes),
          m_transport(transport),
          m_current(current) {}

    bool ViewSent();
    // Returns the records of those that were brought back, in Current, in the order in which they came;
    // nothing when none was tried. The list is to be filled again.
    std::optional<std::vector<LPath>> Recover();

    // A sent dictation is heard while the dialog for recovering is open. It takes turns with the transport,
    // which devices reach at any time.
    bool IsPlaying() const { return m_recover != nullptr && m_recover->IsPlaying(); }
    void StopPlaying() {
        if (m_recover != nullptr) m_recover->StopPlaying();
    }

    // Collects what the typists report, in the background; a call soon after the last round does nothing.
    void CollectReports();
    // The user changes: his reports are collected at once, and those of the user before no longer. waitMs:
    // the longest wait for a round that runs.
    void ForgetReports(uint32_t waitMs);
    // Ends the collecting of reports, which may hang in the network; true when it has ended.
    bool StopCollecting(uint32_t timeoutMs) { return m_collect.Stop(timeoutMs); }
    void RequestStopCollecting() { m_collect.RequestStop(); }

private:
    bool ReadHistory(SentHistory& history);
    // RecoverDialog::Owner
    std::string BringBack(const LPath& sentRecord) override;
    void StopTransport() override { m_transport.Stop(); }

    const AppState& m_state;
    LModalRunner& m_runner;
    BGSend& m_queue;
    DictationList& m_list;
    NotesBox& m_notes;
    Transport& m_transport;
    const CurrentDictation& m_current;
    CollectStatus m_collect;
    std::optional<uint32_t> m_collectedMs;          // tick count of the last round
    RecoverDialog* m_recover = nullptr;             // while it is open
    std::optional<std::vector<LPath>> m_recovered;  // of the dialog that is or was open
};
