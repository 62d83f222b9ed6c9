#pragma once

#include <optional>
#include <string>

#include "app/AppState.h"
#include "send/BGSend.h"
#include "store/DictationFiles.h"
#include "store/SendToSettings.h"
#include "ui/LModalRunner.h"

// Sending from the main window: choosing the recipient, moving the dictation into the Sent folder, and adding
// it to the queue.
// Errors: of choosing, reported to the user; of sending, in the result.
// Thread: the window thread.
class SendCommands {
public:
    SendCommands(const AppState& state, BGSend& queue, LModalRunner& runner)
        : m_state(state), m_queue(queue), m_runner(runner) {}

    // Whether there is audio to send, or may be: a file that cannot be opened now counts.
    static bool HasRecording(const DictationFiles& files);
    // The user's default recipient; nothing, after telling the user, when there is none.
    std::optional<ShownRecipient> DefaultRecipient();
    // Lets the user choose; nothing when there is no recipient or the user cancels.
    std::optional<ShownRecipient> ChooseRecipient();

    enum class Outcome {
        Queued,
        Gone,         // has no record any more
        NotSent,      // for a reason of this dictation alone
        NothingSends  // the next dictations would fail as well
    };
    // reason: a sentence for the user; empty when the dictation was queued or is gone.
    struct Result {
        Outcome outcome;
        std::string reason;
    };
    // Moves one dictation to the Sent folder and queues it. Refused when its notes could not be saved
    // (hasUnsavedNotes), because it would be sent without them.
    Result Send(const DictationFiles& files, const ShownRecipient& recipient, bool hasUnsavedNotes);

private:
    void TellNoRecipients() const;
    std::optional<RecipientNumbers> Recipients();

    const AppState& m_state;
    BGSend& m_queue;
    LModalRunner& m_runner;
};
