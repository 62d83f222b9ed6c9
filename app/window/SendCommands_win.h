#pragma once

#include <vector>

#include "app/AppState.h"
#include "send/BGSend.h"
#include "store/DictationFiles.h"
#include "ui/LWin.h"

// Sending from the main window: which recipient, the move into the Sent folder, and the entry in the queue.
// Thread: the window thread.
class SendCommands {
public:
    SendCommands(const AppState& state, BGSend& queue) : m_state(state), m_queue(queue) {}

    // Index of the user's default recipient; -1 after telling the user that there is none.
    int DefaultRecipient(HWND owner) const;
    // Lets the user choose; -1 when there is no recipient or the choice was cancelled.
    int ChooseRecipient(HWND owner) const;

    // What became of one dictation; the user has been told why it stays in the list.
    enum class Outcome {
        Queued,
        NothingToSend,  // this one alone
        Failed,         // the next ones would fare no better
    };
    // Moves one dictation to the Sent folder and queues it.
    Outcome Send(const DictationFiles& files, int recipient, HWND owner);

private:
    const AppState& m_state;
    BGSend& m_queue;
};
