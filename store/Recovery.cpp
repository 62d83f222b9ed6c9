#include "store/Recovery.h"

#include <map>
#include <span>

#include "base/LFile.h"
#include "base/LLeftOver.h"
#include "base/LProfile.h"
#include "base/LText.h"
#include "base/LTrace.h"
#include "base/LWaveFileFormat.h"
#include "store/DictationFiles.h"
#include "store/DictationRecord.h"
#include "store/MoveToSent.h"
#include "store/NotesFile.h"
#include "store/SendToSettings.h"
#include "store/StagedDictation.h"
#include "store/TakeBack.h"

// Five steps: finish or delete files that were being written; settle dictations that were being loaded
// (StagedDictation) and the move named by the journal; give each audio in Current a record; bring audio and
// notes without a record back from Sent. There is no log of operations besides the journal: the names of the
// files tell (base/LLeftOver.h).
// Listings serve only to find candidates. Before something is deleted or moved the file itself is asked,
// since a listed size may be that of a moment before, and a drive that does not answer makes files look
// absent; a listing that broke off gives no candidates at all. Files are judged by IsAbsent, which is true
// only when the platform knows that the name does not exist.
// Bringing a file back never deletes another one: where both places are taken, TakeBack makes a second
// dictation.

namespace {

// The files of one number in a folder.
struct Found {
    bool record = false;
    bool notes = false;
    bool audio = false;
    bool emptyAudio = false;  // a file of 0 bytes, without even a header
};

// Asks the file, since a listed size may be outdated.
bool IsEmpty(const LPath& path) {
    const LFile file(path, LFile::Open::Read);
    return file.IsOpen() && file.Size() == 0;
}

// The dictations of a folder by number; none when the listing broke off, as nothing may be moved on the
// strength of half a listing.
std::map<int32_t, Found> ListDictations(const LPath& folder) {
    std::map<int32_t, Found> found;
    const bool isWhole = LListFolder(folder, "*.*", [&](const LFolderEntry& entry) {
        const std::optional<int32_t> number = NumberOfFileName(LPath(entry.name));
        const std::string_view extension = LSplitPath(entry.name).extension;
        if (!number) return true;
        if (LEqualNoCase(extension, ".dat")) found[*number].record = true;
        if (entry.isFolder) return true;
        if (LEqualNoCase(extension, ".txt")) found[*number].notes = true;
        if (!LEqualNoCase(extension, ".wav")) return true;
        const bool isEmpty = entry.size == 0 && IsEmpty(LPath::Join(folder.View(), entry.name));
        if (isEmpty) found[*number].emptyAudio = true;
        if (!isEmpty && (entry.size == 0 || entry.size > kEmptyAudioBytes)) found[*number].audio = true;
        return true;
    });
    if (!isWhole) found.clear();
    return found;
}

// Gives audio in Current a record: the one in Sent, when a move broke off after moving it; otherwise a new
// one, with the name of the record in Sent when another program holds that.
void GiveRecord(const DictationFiles& sent, const DictationFiles& current, int64_t now) {
    LTrace("RecoverDictations audio without a record", current.audio.View());
    if (StagedDictation::HoldsRecordOf(current)) return;  // left to the next start
    DictationRecord values;
    if (LFile::Exists(sent.record) && LFile::IsAbsent(sent.audio)) {
        values = DictationRecord::Read(sent.record);
        if (values.result == LReadResult::Unreadable) return;  // left to the next start
        if (TakeBack::Record(sent, current)) WriteSendKeys(current.record, DictationRecord());
    }
    if (!LFile::IsAbsent(current.record)) return;
    const int64_t recorded = LFile(current.audio, LFile::Open::Read).WriteTime();
    values.number.reset();
    values.result = LReadResult::Absent;
    RepairRecord(current.record, values, recorded > 0 ? recorded : now);
}

// Brings audio and notes back that have no record in Sent: their dictation is in Current, or has lost its
// record.
void TakeBackStray(const CurrentUser& user, int32_t number, const Found& found, int64_t now) {
    const DictationFiles current = DictationFiles::OfNumber(user.currentFolder, number);
    const DictationFiles sent = current.InFolder(user.sentFolder);
    if (found.audio) {
        LTrace("RecoverDictations audio in Sent without a record", sent.audio.View());
        const bool isOwn = !LFile::IsAbsent(current.audio);
        const bool isBack = TakeBack::Audio(user, sent, current);
        if (isBack && !isOwn && LFile::IsAbsent(current.record)) GiveRecord(sent, current, now);
    }
    if (found.notes && LFile::Exists(current.record)) TakeBack::Notes(sent, current);
}

// Finishes a change of a settings file, given its copy ("user.dat~" beside "user.dat").
void FinishProfile(const LPath& copy) {
    LProfile::Recover(LPath(copy.View().substr(0, copy.View().size() - 1)));
}

void Discard(const LPath& path) {
    LFile::Delete(path);
}

// Finishes the errors of sending that were being written: where the target had to be deleted first, the file
// beside it is the only copy.
void FinishUntold(const LPath& beside) {
    const LPath kept = beside.WithExtension(".txt");
    if (!LFile::IsAbsent(kept) || !LFile::Replace(beside, kept)) Discard(beside);
}

// Finishes audio that was being rewritten. The old file stays until the new one is complete, so the new one
// is wanted only where the old one is absent; it is then the recording, complete or not.
void FinishAudio(const LPath& rewritten) {
    if (!NumberOfFileName(rewritten)) return;
    const LPath audio = rewritten.WithExtension(".wav");
    const bool isWanted =
        LFile::IsAbsent(audio) && LFile(rewritten, LFile::Open::Read).Size() > kEmptyAudioBytes;
    isWanted ? LFile::Move(rewritten, audio) : LFile::Delete(rewritten);
}

// A typist's report that was fetched: the server has it still, or it is stored.
void DiscardReport(const LPath& report) {
    if (LEqualNoCase(LFileNameOf(report.View()), LLeftOver::kReport)) Discard(report);
}

struct LeftOver {
    const char* extension;
    void (*finish)(const LPath& path);
};
constexpr LeftOver kAnywhere[] = {
    {".dat~", FinishProfile},
    {".ini~", FinishProfile},
    {LLeftOver::kRecipient, SendToSettings::RecoverUnfinished},
    {LLeftOver::kNotes, NotesFile::RecoverUnfinished},
    {LLeftOver::kJournal, Discard},
    {LLeftOver::kInsertBeside, Discard},
    {LLeftOver::kUntold, FinishUntold},
    {".sta", DiscardReport},
};
// In Current only: in Sent, files of this name belong to the send thread.
constexpr LeftOver kInCurrent[] = {{LLeftOver::kAudio, FinishAudio}};

void Finish(const LPath& folder, std::span<const LeftOver> kinds) {
    // Treated after the listing, which must not see the changes.
    std::vector<std::pair<const LeftOver*, LPath>> found;
    LListFolder(folder, "*.*", [&](const LFolderEntry& entry) {
        const std::string_view extension = LSplitPath(entry.name).extension;
        for (const LeftOver& kind : kinds) {
            if (!entry.isFolder && LEqualNoCase(extension, kind.extension))
                found.emplace_back(&kind, LPath::Join(folder.View(), entry.name));
        }
        return true;
    });
    for (const auto& [kind, path] : found) {
        LTrace("RecoverDictations file that was being written", path.View());
        kind->finish(path);
    }
}

void FinishWhatWasBeingWritten(const CurrentUser& user) {
    const std::string_view userFolder = LFolderOf(user.userFile.View());
    if (userFolder.empty()) return;
    const std::string_view dataFolder = LFolderOf(userFolder.substr(0, userFolder.size() - 1));
    for (const LPath& folder : {LPath(dataFolder), LPath(userFolder), user.currentFolder, user.sentFolder})
        Finish(folder, kAnywhere);
    Finish(user.currentFolder, kInCurrent);
}

}  // namespace

void RecoverDictations(const CurrentUser& user, const AskQueue& isQueued, int64_t now) {
    FinishWhatWasBeingWritten(user);
    StagedDictation::Recover(user);
    MoveToSent::TakeUp(user, isQueued);
    for (const auto& [number, found] : ListDictations(user.currentFolder)) {
        const DictationFiles current = DictationFiles::OfNumber(user.currentFolder, number);
        if (found.emptyAudio) LFile::Delete(current.audio);
        if (found.audio && !found.record) GiveRecord(current.InFolder(user.sentFolder), current, now);
    }
    for (const auto& [number, found] : ListDictations(user.sentFolder)) {
        if (found.record || (!found.audio && !found.notes)) continue;
        const LPath audio = DictationFiles::OfNumber(user.sentFolder, number).audio;
        if (isQueued(audio) == QueueAnswer::No) TakeBackStray(user, number, found, now);
    }
}
