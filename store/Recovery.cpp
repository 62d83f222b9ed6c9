#include "store/Recovery.h"

#include <map>

#include "base/LFile.h"
#include "base/LProfile.h"
#include "base/LText.h"
#include "base/LTrace.h"
#include "store/DictationFiles.h"
#include "store/DictationRecord.h"
#include "store/MoveToSent.h"
#include "store/NotesFile.h"

namespace {

constexpr int64_t kEmptyAudioBytes = 46;  // a header without a sample

struct Found {
    bool record = false;
    bool audio = false;
};

std::map<int32_t, Found> ListCurrent(const LPath& folder) {
    std::map<int32_t, Found> found;
    LListFolder(folder, "*.*", [&](const LFolderEntry& entry) {
        const std::optional<int32_t> number = NumberOfFileName(LPath(entry.name));
        if (!number || entry.isFolder) return true;
        const std::string_view extension = LSplitPath(entry.name).extension;
        if (LEqualNoCase(extension, ".dat")) found[*number].record = true;
        if (LEqualNoCase(extension, ".wav") && entry.size > kEmptyAudioBytes) found[*number].audio = true;
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

void FinishNotes(const LPath& folder) {
    std::vector<LPath> unfinished;
    LListFolder(folder, NotesFile::kUnfinishedPattern, [&](const LFolderEntry& entry) {
        unfinished.push_back(LPath::Join(folder.View(), entry.name));
        return true;
    });
    for (const LPath& path : unfinished) NotesFile::RecoverUnfinished(path);
}

}  // namespace

void RecoverDictations(const CurrentUser& user, const std::function<bool(const LPath&)>& isQueued,
                       int64_t now) {
    MoveToSent::TakeUp(user, isQueued);
    for (const auto& [number, found] : ListCurrent(user.currentFolder)) {
        const DictationFiles current = DictationFiles::OfNumber(user.currentFolder, number);
        const DictationFiles sent = current.InFolder(user.sentFolder);
        if (found.audio && !found.record) GiveRecord(sent, current, now);
        if (found.record && !found.audio) GiveAudio(sent, current);
    }
    FinishNotes(user.currentFolder);
}
