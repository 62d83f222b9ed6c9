#pragma once

#include <vector>

#include "app/AppState.h"
#include "send/BGSend.h"
#include "store/DictationFiles.h"
#include "ui/LModalRunner.h"

// Sending from the main window: which recipient, the move into the Sent folder, and the entry in the queue.
// Thread: the window thread.
class SendCommands {
public:
    SendCommands(const AppState& state, BGSend& queue, LModalRunner& runner)
        : m_state(state), m_queue(queue), m_runner(runner) {}

    // Index of the user's default recipient; -1 after telling the user that there is none.
    int DefaultRecipient() const;
    // Lets the user choose; -1 when there is no recipient or the choice was cancelled.
    int ChooseRecipient() const;

    // What became of one dictation; the user has been told why it stays in the list.
    enum class Outcome {
        Queued,
        NothingToSend,  // this one alone
        Failed,         // the next ones would fare no better
    };
    // Moves one dictation to the Sent folder and queues it. One whose notes could not be saved is not sent without.
    Outcome Send(const DictationFiles& files, int recipient, bool hasUnsavedNotes);

private:
    void TellNoRecipients() const;
    void TellNotSent(const DictationFiles& files, const char* reason) const;

    const AppState& m_state;
    BGSend& m_queue;
    LModalRunner& m_runner;
};
