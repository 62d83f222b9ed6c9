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
    // Asks about the insertion of one dictation. True when none waits there any more. False without a word
    // when its files cannot be read now: the caller tells that it waits.
    bool Offer(const DictationFiles& files) { return Take(files, Why::Command) == Outcome::Settled; }
    // The same; no refusal goes without a word.
    bool OfferOrTell(const DictationFiles& files);
    // The dictation was deleted, and what waits goes with it. False when something could not be deleted.
    static bool Discard(const DictationFiles& files);

    // Asks later, when nothing else is open.
    void OfferLater(const DictationFiles& files) { m_later.push_back(files); }
    bool AnyLater() const { return !m_later.empty(); }
    void OfferThoseLater();
    // The user changes: those of his folder are asked about when he logs on again.
    void ForgetThoseLater() { m_later.clear(); }

private:
    // Later: the user has answered or was told. Held: he knows of nothing yet.
    enum class Outcome { Settled, Later, Held };
    // Whether a command of the user waits for it, or nothing does.
    enum class Why { Command, Nothing };

    void OfferAndShow(const DictationFiles& files);
    Outcome Take(const DictationFiles& files, Why why);
    Outcome Settle(const DictationFiles& files, Why why);
    Outcome SetAside(const DictationFiles& files);
    Outcome AskMissing(const DictationFiles& files, const PendingInsert& insert);
    Outcome Ask(const DictationFiles& files, const PendingInsert& insert);
    Outcome Merge(const DictationFiles& files, const PendingInsert& insert);
    Outcome MakeOwn(const DictationFiles& files, const PendingInsert& insert);
    static Outcome Finish(const DictationFiles& files, const PendingInsert& insert);

    const AppState& m_state;
    LModalRunner& m_runner;
    DictationList& m_list;
    Transport& m_transport;
    std::vector<DictationFiles> m_later;
    bool m_isAsking = false;
};
