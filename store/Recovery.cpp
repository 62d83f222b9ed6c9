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
#include "store/TakeBack.h"

namespace {

struct Found {
    bool record = false;
    bool notes = false;
    bool audio = false;
    bool emptyAudio = false;  // not even a header
};

// A listing's size may be that of a moment before: only the file itself knows that it is empty.
bool IsEmpty(const LPath& path) {
    const LFile file(path, LFile::Open::Read);
    return file.IsOpen() && file.Size() == 0;
}

// Nothing when the listing broke off: on the strength of half a listing nothing is moved.
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

// The record is in Sent when a move broke off there; otherwise the audio gets a new one, with the old one's
// name where another program keeps that from being moved.
void GiveRecord(const DictationFiles& sent, const DictationFiles& current, int64_t now) {
    LTrace("RecoverDictations audio without a record", current.audio.View());
    DictationRecord values;
    if (LFile::Exists(sent.record) && LFile::IsAbsent(sent.audio)) {
        values = DictationRecord::Read(sent.record);
        if (values.result == LReadResult::Unreadable) return;  // the next start has more luck
        if (TakeBack::Record(sent, current)) WriteSendKeys(current.record, DictationRecord());
    }
    if (!LFile::IsAbsent(current.record)) return;
    const int64_t recorded = LFile(current.audio, LFile::Open::Read).WriteTime();
    values.number.reset();
    values.result = LReadResult::Absent;
    RepairRecord(current.record, values, recorded > 0 ? recorded : now);
}

// Audio and notes that lie in Sent without a record belong to a dictation in Current, or have nobody at all.
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

// A change to a settings file that was not finished: "user.dat~" beside "user.dat".
void FinishProfile(const LPath& copy) {
    LProfile::Recover(LPath(copy.View().substr(0, copy.View().size() - 1)));
}

void Discard(const LPath& path) {
    LFile::Delete(path);
}

// Audio that was being rewritten: the old file stands until the new one is complete. Without the old one it
// is the recording, whole or not.
void FinishAudio(const LPath& rewritten) {
    if (!NumberOfFileName(rewritten)) return;
    const LPath audio = rewritten.WithExtension(".wav");
    const bool isWanted =
        LFile::IsAbsent(audio) && LFile(rewritten, LFile::Open::Read).Size() > kEmptyAudioBytes;
    isWanted ? LFile::Move(rewritten, audio) : LFile::Delete(rewritten);
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
};
// In Sent, files of this name belong to the send thread.
constexpr LeftOver kInCurrent[] = {{LLeftOver::kAudio, FinishAudio}};

void Finish(const LPath& folder, std::span<const LeftOver> kinds) {
    std::vector<std::pair<const LeftOver*, LPath>> found;  // dealt with when the listing has ended
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
