#include "app/window/DictationCommands_win.h"

#include <algorithm>
#include <utility>

#include "base/LFile.h"
#include "base/LText.h"
#include "base/LTime.h"
#include "res/Ids.h"
#include "store/DictationRecord.h"
#include "store/DictationStore.h"
#include "store/SettingsKeys.h"
#include "ui/LTextEditDlg.h"

namespace {

constexpr char kDiskLow[] =
    "Your hard drive is low on space. Corvane might not function properly unless you remove some files.";
// How long a command may wait, with the window, for files that others hold: seconds for each of them.
constexpr uint32_t kPatienceMs = 6000;
constexpr char kConfirmDelete[] = "Are you sure you want to delete this dictation?";
constexpr char kConfirmSeveral[] = "\n\nAll %lu selected dictations will be deleted.";
constexpr char kConfirmInsert[] = "\n\nA recording that waits to be inserted goes with it.";
constexpr char kConfirmInserts[] = "\n\nRecordings that wait to be inserted go with them.";
constexpr char kInsertLeft[] =
    "A recording that waited to be inserted could not be deleted. It may be open in another program.\n\n"
    "It is kept, and becomes a dictation of its own at a later start.";
constexpr char kCannotDelete[] =
    "A dictation could not be deleted completely.\n\n"
    "One of its files may be open in another program or be write-protected. What is left of it stays in the "
    "list.";
constexpr char kRecordedOnto[] =
    "The dictation was recorded onto while you were asked, and was not deleted.\n\n"
    "Delete it again if you do not need what was said, either.";
constexpr char kInsertWaits[] =
    "Something that was recorded to be inserted into it is not inserted yet. It stays in the list.";
constexpr char kCannotCreate[] =
    "Unable to create a new dictation.\n\nThe data folder cannot be written to. The disk might be full or "
    "write-protected, or another program may be using your user file. Please try again.";

constexpr char kGone[] =
    "The dictation \"%.80s\"%s no longer here.\n\nSent or deleted in another window, perhaps.%s";
constexpr size_t kTypedShown = 500;
constexpr char kTyped[] = "\n\nWhat stood in the box for its notes was not stored:\n\n%.500s";
constexpr char kTypedCopied[] = "...\n\nAll of it is on the clipboard.";

}  // namespace

const char DictationCommands::kNotStored[] =
    "The change could not be stored.\n\n"
    "The dictation's file may be open in another program or be write-protected, or the disk may be full. "
    "What could not be stored stays as it was.";

// Called before every command on a dictation. False when the window is to close.
bool DictationCommands::StopAndSave() {
    const bool goesOn = m_transport.Stop();
    m_notes.Save();
    return goesOn;
}

std::vector<DictationFiles> DictationCommands::CurrentAlone() const {
    return m_current ? std::vector{*m_current.Files()} : std::vector<DictationFiles>();
}

std::optional<NewDictation> DictationCommands::Make(DictationName name) {
    // Told afterwards: a dictation that a recording asks for must not wait for a box, perhaps unseen.
    if (FreeLowDisk()) m_runner.TellLater(kDiskLow, "Warning");
    std::optional<NewDictation> made = MakeDictation(m_state.user, LNowSeconds(), name);
    // A record in another file may claim this number: then take the next, so that the new dictation has a row
    // of its own.
    while (made && m_list.HoldsNumber(made->number)) {
        DeleteDictationFiles(made->files);
        made = MakeDictation(m_state.user, LNowSeconds(), name);
    }
    if (!made) m_runner.Tell(kCannotCreate);
    return made;
}

bool DictationCommands::Create() {
    if (!StopAndSave()) return false;
    const std::optional<NewDictation> created = Make();
    if (!created) return false;
    m_list.AddFile(created->files.record);
    m_list.SelectFile(created->files.record);
    AskFields(created->files);
    return m_current.Is(created->files);
}

// Asks for the prompted fields that the settings want, and adds the answers to the notes.
void DictationCommands::AskFields(const DictationFiles& files) {
    const LPath& settings = m_state.data.settingsFile;
    for (const SettingsKeys::PromptKeys& keys : SettingsKeys::kPrompts) {
        if (!Settings::Read(settings, keys.prompt) || !m_current.Is(files)) continue;
        m_runner.ComeForward();
        std::optional<std::string> answer;
        m_runner.RunModal(LModalRunner::Activity::GoesOn, [&](HWND owner) -> INT_PTR {
            answer =
                LTextEditDlg::Ask(owner, m_list.NameOf(files.record), Settings::Read(settings, keys.text),
                                  Settings::Read(settings, keys.previous));
            return answer.has_value();
        });
        if (!answer || !m_runner.MayGoOn()) continue;
        Settings::Write(settings, keys.previous, *answer);
        m_notes.SetField(files.notes, Settings::Read(settings, keys.xmlTag), *answer);
    }
}

bool DictationCommands::BeginRename() {
    m_notes.Save();
    if (!m_current || DropGone({*m_current.Files()})) return false;
    m_list.BeginRename();
    return true;
}

void DictationCommands::Rename(std::string_view name) {
    if (!m_current || !ChangedName(m_list.NameOf(m_current.Files()->record), name)) return;
    m_notes.Save();
    if (DropGone({*m_current.Files()})) return;
    if (!m_list.Rename(*m_current.Files(), name)) TellNotStored();
}

// Of a dictation that is gone the user is told when its row is loaded again.
void DictationCommands::TellNotStored() {
    if (!m_current || !m_current.Files()->IsGone()) m_runner.TellLater(kNotStored);
}

bool DictationCommands::DropGone(std::vector<DictationFiles> dictations) {
    std::erase_if(dictations, [](const DictationFiles& files) { return !files.IsGone(); });
    if (dictations.empty()) return false;
    const std::string name = m_list.NameOf(dictations.front().record);
    // Where one went others did: the user is told once, not with each row that becomes the current one.
    for (const DictationFiles& files : m_list.NotIn(FolderListing(m_state.user.currentFolder)))
        if (LFile::IsAbsent(files.record)) dictations.push_back(files);
    m_notes.Save();  // keeps the text that was typed into one of them
    std::string typed;
    for (const DictationFiles& files : dictations) {
        if (const UnsavedNotes::Kept* kept = m_notes.Unsaved().Find(files.notes))
            typed += (typed.empty() ? "" : "\n\n") + m_list.NameOf(files.record) + ": " + kept->text;
        m_notes.Forget(files.notes);
    }
    const int before = m_list.Count();
    m_list.RemoveFiles(dictations);
    const int others = before - m_list.Count() - 1;
    if (others < 0 && typed.empty()) return true;  // no row, and nothing to give back
    const std::string more = others <= 0 ? " is" : LFormat(" and %d more are", others);
    std::string notes = typed.empty() ? "" : LFormat(kTyped, typed.c_str());
    if (typed.size() > kTypedShown) notes += LCopyToClipboard(typed) ? kTypedCopied : "...";
    const std::string text = LFormat(kGone, name.c_str(), more.c_str(), notes.c_str());
    typed.empty() ? m_runner.TellLater(text) : m_runner.TellAtRest(text);
    return true;
}

namespace {

// A step for each of many dictations; a step returns false to end them all.
class EachDictation final : public LProcess {
public:
    EachDictation(const std::vector<DictationFiles>& dictations,
                  std::function<bool(const DictationFiles&)> step)
        : m_dictations(dictations), m_step(std::move(step)) {}
    ProcessResult Process(ProcessContext& context) override {
        context.SetStatus("Please wait...");
        for (size_t i = 0; i < m_dictations.size(); ++i) {
            if (context.CancelRequested()) return ProcessResult::Stopped;
            context.SetProgress(static_cast<double>(i) / static_cast<double>(m_dictations.size()));
            if (!m_step(m_dictations[i])) break;
        }
        return ProcessResult::Done;
    }

private:
    const std::vector<DictationFiles>& m_dictations;
    std::function<bool(const DictationFiles&)> m_step;
};

}  // namespace

// Does the step for each dictation, under a progress dialog where there are many. Without one no messages
// run, so what is typed after Ctrl+S goes where it did.
void DictationCommands::ForEach(const std::vector<DictationFiles>& dictations, std::string_view title,
                                const std::function<bool(const DictationFiles&)>& step) {
    constexpr size_t kMany = 10;
    if (dictations.size() > kMany) {
        EachDictation process(dictations, step);
        m_runner.RunProcess(process, title);
        return;
    }
    for (const DictationFiles& files : dictations)
        if (!step(files)) return;
}

bool DictationCommands::SetPriority(std::string_view priority) {
    bool all = true;
    const std::vector<DictationFiles> selected = m_list.Selected();
    ForEach(selected, "Set Priority", [&](const DictationFiles& files) {
        all = (StorePriority(files.record, priority) || files.IsGone()) && all;
        return true;
    });
    m_list.UpdateFiles(selected, FolderListing(m_state.user.currentFolder));
    DropGone(m_list.TakeAbsent());
    if (!all) TellNotStored();
    return all;
}

// Nothing when no insertion waits to be merged into the dictation.
static std::optional<int64_t> NoteSize(const FolderListing& listing, const DictationFiles& files) {
    return listing.SizeOf(PendingInsert::NoteOf(files).View());
}

// What the user is asked before dictations are deleted; listing: of their folder.
static std::string DeleteQuestion(const std::vector<DictationFiles>& dictations,
                                  const FolderListing& listing) {
    const bool areSeveral = dictations.size() > 1;
    std::string question = kConfirmDelete;
    if (areSeveral) question += LFormat(kConfirmSeveral, static_cast<unsigned long>(dictations.size()));
    if (std::ranges::any_of(dictations,
                            [&](const auto& files) { return NoteSize(listing, files).has_value(); }))
        question += areSeveral ? kConfirmInserts : kConfirmInsert;
    return question;
}

bool DictationCommands::Delete(const std::vector<DictationFiles>& dictations) {
    if (dictations.empty() || !StopAndSave()) return false;
    const FolderListing asked(m_state.user.currentFolder);
    const std::string question = DeleteQuestion(dictations, asked);
    if (m_runner.Box(question, "Confirm Delete", MB_YESNO | MB_ICONEXCLAMATION | MB_DEFBUTTON2) != IDYES)
        return false;
    if (!StopAndSave()) return false;
    const FolderListing listing(m_state.user.currentFolder);
    std::vector<DictationFiles> gone;
    std::vector<DictationFiles> left;
    bool isRecordedOnto = false;
    bool isInsertLeft = false;
    ForEach(dictations, "Deleting Dictations", [&](const DictationFiles& files) {
        if (!m_list.NumberOf(files.record)) return true;
        // A device may have recorded while the question was open; the user was not asked about those words.
        if (listing.SizeOf(files.audio.View()) != asked.SizeOf(files.audio.View()) ||
            NoteSize(listing, files) != NoteSize(asked, files)) {
            isRecordedOnto = true;
            return true;
        }
        const bool isGone = DeleteDictationFiles(files, listing);
        if (isGone) m_notes.Forget(files.notes);
        if (isGone && NoteSize(asked, files) && !InsertOffers::Discard(files)) isInsertLeft = true;
        (isGone ? gone : left).push_back(files);
        return true;
    });
    m_list.RemoveFiles(gone);
    if (!left.empty()) m_list.UpdateFiles(left, FolderListing(m_state.user.currentFolder));
    m_transport.EvAudioChanged();
    if (isRecordedOnto) m_runner.Tell(kRecordedOnto);
    if (!left.empty()) m_runner.Tell(kCannotDelete);
    if (isInsertLeft) m_runner.Tell(kInsertLeft);
    return left.empty() && !isRecordedOnto && !isInsertLeft;
}

// Asks about insertions that wait: without them the typist would miss what the user has said. A dictation
// that goes on waiting is not ready.
void DictationCommands::SettleInserts(const std::vector<DictationFiles>& dictations,
                                      std::vector<DictationFiles>& ready, std::vector<NotSent>& left) {
    const std::vector<DictationFiles> waiting = PendingInsert::List(m_state.user.currentFolder);
    for (const DictationFiles& files : dictations) {
        const bool waits = std::ranges::any_of(waiting, [&](const DictationFiles& one) {
            return LEqualNoCase(one.record.View(), files.record.View());
        });
        if (!waits || m_inserts.Offer(files))
            ready.push_back(files);
        else
            left.push_back({m_list.NameOf(files.record), kInsertWaits});
    }
}

bool DictationCommands::SendLoaded(const DictationFiles& files) {
    bool nothingSends = true;
    Send({files}, To::Default, &nothingSends);
    return !nothingSends;
}

bool DictationCommands::Send(const std::vector<DictationFiles>& dictations, To to, bool* nothingSends) {
    // A recording goes on that has nothing to do with them, as while files are loaded.
    const bool stops =
        std::ranges::any_of(dictations, [&](const auto& files) { return m_current.Is(files); });
    const auto settle = [&] {
        if (stops) return StopAndSave();
        m_notes.Save();
        return m_runner.MayGoOn();
    };
    if (dictations.empty() || !settle()) return false;
    // Nobody chooses a typist for nothing; sending then only tells why.
    const bool isAnyWhole = std::ranges::any_of(dictations, SendCommands::HasRecording);
    const bool isChosen = to == To::Chosen && isAnyWhole;
    const auto recipient = isChosen ? m_send.ChooseRecipient() : m_send.DefaultRecipient();
    if (!recipient) return false;
    std::vector<NotSent> left;
    std::vector<DictationFiles> ready;
    SettleInserts(dictations, ready, left);
    std::vector<DictationFiles> queued;
    std::vector<DictationFiles> gone;
    size_t tried = left.size();
    bool isForAll = false;
    uint32_t lostMs = 0;
    ForEach(ready, "Sending Dictations", [&](const DictationFiles& files) {
        // In each pass: stopping can run messages, and with them notes of another program, a recording of a
        // device, or the end of the dictation.
        if (!settle()) return false;
        ++tried;
        if (!m_list.NumberOf(files.record)) return true;
        const uint32_t begun = LTickMs();
        const bool isUnsaved = m_notes.Unsaved().Find(files.notes) != nullptr;
        const SendCommands::Result result = m_send.Send(files, *recipient, isUnsaved);
        if (result.outcome == SendCommands::Outcome::Gone) gone.push_back(files);
        if (result.outcome == SendCommands::Outcome::Queued) queued.push_back(files);
        if (result.reason.empty()) return true;
        left.push_back({m_list.NameOf(files.record), result.reason});
        isForAll = result.outcome == SendCommands::Outcome::NothingSends;
        lostMs += LTickMs() - begun;
        return !isForAll && lostMs < kPatienceMs;
    });
    if (nothingSends != nullptr) *nothingSends = isForAll;
    m_list.RemoveFiles(queued);
    if (!gone.empty()) DropGone(gone);
    if (!left.empty()) m_runner.Tell(NotSentText(left, dictations.size() - tried));
    return left.empty();
}

// "Cancel" in this box empties the queue, and Escape means Cancel; a user who records or plays presses Escape
// to stop. So the box waits while the transport runs and until the hand has rested, and when a device started
// the transport while the box was open, Cancel stops that and leaves the queue alone. A box that ended with
// its window, or could not be opened, is no answer: the next start shows the error.
void DictationCommands::ShowSendError() {
    if (!m_transport.IsRunning() && m_runner.IsHandAtRest()) AskAboutSendError();
}

void DictationCommands::AskAboutSendError() {
    if (m_runner.OpenModal() != LModalRunner::Modal::Nothing) return;
    const SendError error = m_queue.PendingError();
    if (!error) return;
    const int answer =
        m_runner.UnaskedBox(SendErrorBoxText(error), "Error", MB_OKCANCEL | MB_ICONEXCLAMATION);
    if (!m_runner.MayGoOn() || answer == 0) return;
    m_queue.ForgetError(error);
    if (answer != IDCANCEL) return m_queue.StartSending();
    if (m_transport.IsRunning())
        m_transport.Stop();
    else
        m_queue.ClearQueue();
}

bool DictationCommands::TellSendErrorAtClose() {
    if (m_runner.OpenModal() == LModalRunner::Modal::Nothing) {
        StopAndSave();
        m_runner.ShowAll();
        AskAboutSendError();
    }
    return m_runner.MayGoOn();
}

// ---- Disk ------------------------------------------------------------------------------------------------

void DictationCommands::DeleteOldFiles() {
    const int32_t days = Settings::Read(m_state.data.settingsFile, SettingsKeys::kAutoDeleteDays);
    DeleteOldDictations(m_state.user.sentFolder, days, LNowFileTime(),
                        [this](const LPath& audio) { return m_queue.IsQueued(audio); });
}

// Deletes old sent dictations where the disk is nearly full; true when it was.
bool DictationCommands::FreeLowDisk() {
    if (!IsDiskLow(m_state.data)) return false;
    DeleteOldFiles();
    return true;
}

void DictationCommands::TestHardDrive() {
    if (!FreeLowDisk()) return;
    m_runner.UnaskedBox(kDiskLow, "Warning", MB_OK | MB_ICONEXCLAMATION);
}
