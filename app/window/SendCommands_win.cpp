#include "app/window/SendCommands_win.h"

#include "app/dialogs/ChooseRecipientDialog_win.h"
#include "app/dialogs/RecipientSettings_win.h"
#include "audio/wave/LWaveFile.h"
#include "base/LFile.h"
#include "base/LTime.h"
#include "store/MoveToSent.h"
#include "store/SendToSettings.h"
#include "store/SettingsKeys.h"

// Sending one dictation is a short transaction on the window thread: move its files (MoveToSent), append the
// queue entry, commit the move. If the entry cannot be appended the move is undone by its destructor, so a
// dictation is never in Sent without being queued. Conversion and delivery follow on the send thread, from
// the files in Sent alone: neither window nor list takes part in them.
// An unfinished earlier move is settled first, since it may hold this dictation's audio.

namespace {

constexpr char kNoRecipients[] =
    "No Typist Recipients have been set up.\n\nPlease open the Recipient Settings Dialog Box using the "
    "Recipient Settings item on the Settings menu and add a New Recipient.";
constexpr char kNoRecipientsCaption[] = "No Send To Recipients";
constexpr char kNoRecording[] = "It has no recording yet. Please record it first.";
constexpr char kUnsavedNotes[] = "Its notes could not be saved. The disk may be full. It stays in the list.";
constexpr char kNoFolder[] =
    "The recipient has no folder to send to. It stays in the list; please check the recipient's settings.";
constexpr char kChanged[] =
    "The recipients were changed in another window. It stays in the list; please send it again.";
constexpr char kNoDefault[] =
    "You have no default recipient. Please choose one with the Recipient Settings item on the Settings menu, "
    "or "
    "send with Select Recipient.";
constexpr char kNotQueued[] = "Corvane internal files are read only or corrupt. It stays in the list.";

// Whether the recipient is to be sent to by a folder that nobody has entered. The send thread would count
// each dictation as sent.
bool LacksFolder(const LPath& recipient) {
    SendToSettings settings;
    return settings.Load(recipient) &&
           settings.method == static_cast<uint32_t>(SendToSettings::Method::Folder) &&
           settings.folder.empty();
}

}  // namespace

// False also for a recording that ended without a word; true for a file that cannot be opened now, which the
// move then reports.
bool SendCommands::HasRecording(const DictationFiles& files) {
    LFile file(files.audio, LFile::Open::Read);
    if (!file.IsOpen()) return !LFile::IsAbsent(files.audio);
    LWaveInfo info;
    return file.Size() > 0 && (!LWaveFile::ReadInfo(file, info) || info.dataBytes > 0);
}

void SendCommands::TellNoRecipients() const {
    m_runner.Box(kNoRecipients, kNoRecipientsCaption, MB_OK | MB_ICONEXCLAMATION);
}

std::optional<ShownRecipient> SendCommands::DefaultRecipient() {
    const CurrentUser& user = m_state.user;
    if (!m_queue.SettleDeletion(user.number)) return m_runner.Tell(kRecipientUnsettled), std::nullopt;
    const auto numbers = RecipientNumbers::Read(user.userFile);
    if (!numbers) return m_runner.Tell(kUserFileHeld), std::nullopt;
    if (numbers->count == 0) return TellNoRecipients(), std::nullopt;
    if (!numbers->defaultIndex) return m_runner.Tell(kNoDefault), std::nullopt;
    return ShownRecipient::Read(m_state.data, user, *numbers->defaultIndex);
}

std::optional<ShownRecipient> SendCommands::ChooseRecipient() {
    if (!m_queue.SettleDeletion(m_state.user.number)) return m_runner.Tell(kRecipientUnsettled), std::nullopt;
    const auto numbers = RecipientNumbers::Read(m_state.user.userFile);
    if (!numbers) return m_runner.Tell(kUserFileHeld), std::nullopt;
    if (numbers->count == 0) return TellNoRecipients(), std::nullopt;
    return AskForRecipient(m_state, m_runner);
}

SendCommands::Result SendCommands::Send(const DictationFiles& files, const ShownRecipient& recipient,
                                        bool hasUnsavedNotes) {
    const AskQueue isQueued = [this](const LPath& audio) { return m_queue.IsQueued(audio); };
    MoveToSent::TakeUp(m_state.user, isQueued);  // may bring the dictation's audio back from Sent
    if (files.IsGone()) return {Outcome::Gone, {}};
    if (!HasRecording(files)) return {Outcome::NotSent, kNoRecording};
    if (hasUnsavedNotes) return {Outcome::NotSent, kUnsavedNotes};
    const LPath recipientPath = RecipientPath(m_state.data.folder, m_state.user.number, recipient.index);
    const auto isStill = [&] {
        return ShownRecipient::Read(m_state.data, m_state.user, recipient.index) == recipient;
    };
    if (!m_queue.SettleDeletion(m_state.user.number)) return {Outcome::NothingSends, kRecipientUnsettled};
    if (!isStill()) return {Outcome::NothingSends, kChanged};
    if (LacksFolder(recipientPath)) return {Outcome::NothingSends, kNoFolder};
    const std::string description = DescribeRecipient(m_state.data, m_state.user, recipient.index);
    MoveToSent move(m_state.user, files.record, isQueued);
    if (!move.Run(description, LNowSeconds()))
        return {move.ConcernsAll() ? Outcome::NothingSends : Outcome::NotSent, move.Reason()};
    // A refusal leaves an error text of the queue, too; the destructor undoes the move.
    if (!m_queue.Add(move.Sent().audio, recipientPath, m_state.user.number, isStill))
        return {Outcome::NothingSends, isStill() ? kNotQueued : kChanged};
    move.Commit();
    return {Outcome::Queued, {}};
}
