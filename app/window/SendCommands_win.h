#pragma once

#include <vector>

#include "app/AppState.h"
#include "send/BGSend.h"
#include "store/DictationFiles.h"
#include "ui/LModalRunner.h"

// Sending from the main window: choosing the recipient, moving the dictation into the Sent folder, and adding
// it to the queue.
// Errors: reported to the user.
// Thread: the window thread.
class SendCommands {
public:
    SendCommands(const AppState& state, BGSend& queue, LModalRunner& runner)
        : m_state(state), m_queue(queue), m_runner(runner) {}

    // Index of the user's default recipient; -1, after telling the user, when there is none.
    int DefaultRecipient() const;
    // Lets the user choose; -1 when there is no recipient or the user cancels.
    int ChooseRecipient() const;

    // The result for one dictation. Unless it is Queued the user has been told why the dictation stays in the
    // list.
    enum class Outcome {
        Queued,
        NothingToSend,  // concerns only this dictation
        Failed,         // the next dictations would fail as well
    };
    // Moves one dictation to the Sent folder and queues it. Refused when its notes could not be saved
    // (hasUnsavedNotes), because it would be sent without them.
    Outcome Send(const DictationFiles& files, int recipient, bool hasUnsavedNotes);

private:
    void TellNoRecipients() const;
    void TellNotSent(const DictationFiles& files, const char* reason) const;

    const AppState& m_state;
    BGSend& m_queue;
    LModalRunner& m_runner;
};
