#pragma once

#include <optional>
#include <vector>

#include "app/AppState.h"
#include "app/transport/Transport_win.h"
#include "app/window/DictationList_win.h"
#include "store/PendingInsert.h"
#include "ui/LModalRunner.h"

// Settles insertions that could not be merged when they ended: cancelled, without room on the disk, or cut
// off by the end of the program. The user is asked; what was recorded goes into its dictation, becomes a
// dictation of its own, or goes on waiting. It is never thrown away.
// Errors: reported to the user.
// Thread: the window thread. Questions and merging run messages.
class InsertOffers {
public:
    InsertOffers(const AppState& state, LModalRunner& runner, DictationList& list, Transport& transport)
        : m_state(state), m_runner(runner), m_list(list), m_transport(transport) {}

    // Asks about each insertion of the user's folder. Precondition: no other program works in the folder; an
    // insertion that runs there would look like one that waits.
    void OfferAll();
    // Asks about the insertion of one dictation. True when none waits there any more.
    bool Offer(const DictationFiles& files);

    // Asks later, when nothing else is open.
    void OfferLater(const DictationFiles& files) { m_later.push_back(files); }
    bool AnyLater() const { return !m_later.empty(); }
    void OfferThoseLater();
    // The user changes: those of his folder are asked about when he logs on again.
    void ForgetThoseLater() { m_later.clear(); }

private:
    bool Ask(const DictationFiles& files, const PendingInsert& insert);
    bool Settle(const DictationFiles& files);
    void OfferAndShow(const DictationFiles& files);
    bool AskMissing(const DictationFiles& files, const PendingInsert& insert);
    bool Merge(const DictationFiles& files, const PendingInsert& insert);
    bool MakeOwn(const DictationFiles& files, const PendingInsert& insert);
    static bool Finish(const DictationFiles& files, const PendingInsert& insert);

    const AppState& m_state;
    LModalRunner& m_runner;
    DictationList& m_list;
    Transport& m_transport;
    std::vector<DictationFiles> m_later;
    bool m_isAsking = false;
};
