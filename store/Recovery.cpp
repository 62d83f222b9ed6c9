#include "store/Recovery.h"

#include <map>
#include <span>

#include "base/LFile.h"
#include "base/LProfile.h"
#include "base/LText.h"
#include "base/LTrace.h"
#include "base/LWaveFileFormat.h"
#include "store/DictationFiles.h"
#include "store/DictationRecord.h"
#include "store/MoveToSent.h"
#include "store/NotesFile.h"
#include "store/SendToSettings.h"

namespace {

constexpr int64_t kEmptyAudioBytes = 46;  // a header without a sample

struct Found {
    bool record = false;
    bool audio = false;
    bool emptyAudio = false;  // not even a header
};

std::map<int32_t, Found> ListCurrent(const LPath& folder) {
    std::map<int32_t, Found> found;
    LListFolder(folder, "*.*", [&](const LFolderEntry& entry) {
        const std::optional<int32_t> number = NumberOfFileName(LPath(entry.name));
        if (!number || entry.isFolder) return true;
        const std::string_view extension = LSplitPath(entry.name).extension;
        if (LEqualNoCase(extension, ".dat")) found[*number].record = true;
        if (LEqualNoCase(extension, ".wav") && entry.size > kEmptyAudioBytes) found[*number].audio = true;
        if (LEqualNoCase(extension, ".wav") && entry.size == 0) found[*number].emptyAudio = true;
        return true;
    });
    return found;
}

void FetchNotes(const DictationFiles& sent, const DictationFiles& current) {
    if (LFile::Exists(sent.notes) && !LFile::Exists(current.notes)) LFile::Move(sent.notes, current.notes);
}

// The record is in Sent when a move broke off there; otherwise the audio gets a new one.
void GiveRecord(const DictationFiles& sent, const DictationFiles& current, int64_t now) {
    LTrace("RecoverDictations audio without a record", current.audio.View());
    if (LFile::Exists(sent.record) && !LFile::Exists(sent.audio)) {
        WriteSendKeys(sent.record, DictationRecord());
        LProfile::Flush(sent.record);
        if (LFile::Move(sent.record, current.record)) FetchNotes(sent, current);
    }
    if (LFile::Exists(current.record)) return;
    const int64_t recorded = LFile(current.audio, LFile::Open::Read).WriteTime();
    DictationRecord values;
    RepairRecord(current.record, values, recorded > 0 ? recorded : now);
}

// The audio is in Sent when a recovery from there broke off. Most records without audio were just never
// recorded.
void GiveAudio(const DictationFiles& sent, const DictationFiles& current) {
    if (!LFile::Exists(sent.audio) || LFile::Exists(sent.record) || LFile::Exists(current.audio)) return;
    LTrace("RecoverDictations record without its audio", current.record.View());
    if (LFile::Move(sent.audio, current.audio)) FetchNotes(sent, current);
}

// A change to a settings file that was not finished: "user.dat~" beside "user.dat".
void FinishProfile(const LPath& copy) {
    LProfile::Recover(LPath(copy.View().substr(0, copy.View().size() - 1)));
}

void Discard(const LPath& path) {
    LFile::Delete(path);
}

bool IsCompleteWave(const LPath& path) {
    LFile file(path, LFile::Open::Read);
    return LIsWholeWave(file);
}

// Audio that was being rewritten: the old file stands until the new one is complete.
void FinishAudio(const LPath& rewritten) {
    if (!NumberOfFileName(rewritten)) return;
    const LPath audio = rewritten.WithExtension(".wav");
    const bool isWanted = !LFile::Exists(audio) && IsCompleteWave(rewritten);
    isWanted ? LFile::Move(rewritten, audio) : LFile::Delete(rewritten);
}

struct LeftOver {
    const char* extension;
    void (*finish)(const LPath& path);
};
constexpr LeftOver kAnywhere[] = {
    {".dat~", FinishProfile},
    {".ini~", FinishProfile},
    {".re~", SendToSettings::RecoverUnfinished},
    {".tx~", NotesFile::RecoverUnfinished},
    {".mo~", Discard},
};
// In Sent, files of this name belong to the send thread.
constexpr LeftOver kInCurrent[] = {{kUnfinishedAudioExtension, FinishAudio}};

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

void RecoverDictations(const CurrentUser& user, const std::function<bool(const LPath&)>& isQueued,
                       int64_t now) {
    FinishWhatWasBeingWritten(user);
    MoveToSent::TakeUp(user, isQueued);
    for (const auto& [number, found] : ListCurrent(user.currentFolder)) {
        const DictationFiles current = DictationFiles::OfNumber(user.currentFolder, number);
        const DictationFiles sent = current.InFolder(user.sentFolder);
        if (found.emptyAudio) LFile::Delete(current.audio);
        if (found.audio && !found.record) GiveRecord(sent, current, now);
        if (found.record && !found.audio) GiveAudio(sent, current);
    }
}
