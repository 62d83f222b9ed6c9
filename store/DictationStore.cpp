#include "store/DictationStore.h"

#include <algorithm>
#include <initializer_list>
#include <map>
#include <string>

#include "base/LFile.h"
#include "base/LLeftOver.h"
#include "base/LProfile.h"
#include "base/LProfileText.h"
#include "base/LText.h"
#include "base/LTrace.h"
#include "store/DictationRecord.h"
#include "store/SettingsKeys.h"

// Numbers. The counter lives in the user file; taking a number also looks for files of that number, because
// the counter may be lost with its file or wrap around. Behind a number that is taken the free one is found
// in listings: a look for the files of each number read both folders once for every dictation, and the first
// New after the loss took 8 s with 3,000 of them. A user file that cannot be read gives no number at all: the
// default, 1, was given out twice when a backup program held the file.
// Deletion goes audio, notes, record, so that a deletion that is cut off or refused leaves a dictation that
// is still listed, never audio without a row. Old dictations are judged by the file system's creation times
// in units of 429.5 s (see kFileTimeHighUnitsPerDay), and by their records: only a delivered one may go.

static int32_t NumberAfter(int32_t number) {
    return (number + 1) % kDictationNumbers;
}

static bool IsTaken(const CurrentUser& user, int32_t number) {
    return DictationFiles::OfNumber(user.currentFolder, number).AnyExists() ||
           DictationFiles::OfNumber(user.sentFolder, number).AnyExists();
}

// The first number from this one on that has no files. The listings only pass over numbers; the last word is
// the folders' own, since a listing may have broken off.
static int32_t FirstFree(const CurrentUser& user, int32_t number) {
    if (!IsTaken(user, number)) return number;
    const FolderListing current(user.currentFolder), sent(user.sentFolder);
    int32_t tried = 0;
    do {
        number = NumberAfter(number);
        const LPath record = DictationFiles::OfNumber(user.currentFolder, number).record;
        const bool isListed = !current.OfBaseName(record).empty() || !sent.OfBaseName(record).empty();
        if (!isListed && !IsTaken(user, number)) break;
    } while (++tried < kDictationNumbers);
    return number;
}

// Whether a file can be read but is longer than any settings file: it never held a counter, and waiting for
// it would prevent dictating for ever.
static bool IsNoProfile(const LPath& path) {
    LFile file;
    return LFile::OpenToRead(path, file, 0) == LReadResult::Values &&
           file.Size() > static_cast<int64_t>(kLongestProfile);
}

std::optional<int32_t> NextDictationNumber(const CurrentUser& user) {
    const LProfileSection section(user.userFile, UserKeys::kNumber.section, kReadWaitMs);
    if (section.Result() == LReadResult::Unreadable && !IsNoProfile(user.userFile)) return std::nullopt;
    const std::string text = section.Read(UserKeys::kNumber.key, {});
    const int32_t stored = text.empty() ? UserKeys::kNumber.defaultValue : LParseInt(text);
    const int32_t number =
        FirstFree(user, stored < 0 ? UserKeys::kNumber.defaultValue : stored % kDictationNumbers);
    Settings::Write(user.userFile, UserKeys::kNumber, number + 1);
    return number;
}

// As a whole: key by key the disk would have to be waited for three times.
static bool WriteNewRecord(const LPath& record, int32_t number, int64_t now, const std::string& name) {
    const auto line = [](const char* key, const std::string& value) {
        return LFormat("%s=%s\r\n", key, value.c_str());
    };
    const std::string text = LFormat("[%s]\r\n", RecordKeys::kSection) + line(RecordKeys::kName.key, name) +
                             line(RecordKeys::kNumber.key, std::to_string(number)) +
                             line(RecordKeys::kDate, std::to_string(now));
    return LFile::WriteWhole(record, LProfile::CopyOf(record),
                             {reinterpret_cast<const uint8_t*>(text.data()), text.size()});
}

std::optional<NewDictation> MakeDictation(const CurrentUser& user, int64_t now, DictationName name) {
    const std::optional<int32_t> number = NextDictationNumber(user);
    if (!number) return std::nullopt;
    NewDictation created;
    created.number = *number;
    created.files = DictationFiles::OfNumber(user.currentFolder, created.number);
    const LPath& record = created.files.record;
    if (!WriteNewRecord(record, created.number, now, name(created.number))) {
        LTrace("MakeDictation unable to write record", record.View());
        return std::nullopt;
    }
    return created;
}

static bool MoveInOrder(const DictationFiles& files, const DictationFiles& target,
                        std::initializer_list<LPath DictationFiles::*> order) {
    std::vector<LPath DictationFiles::*> done;
    LProfile::Flush(files.record);
    for (const auto file : order) {
        if (LFile::IsAbsent(files.*file)) continue;
        if (!LFile::Move(files.*file, target.*file, kMoveWaitMs)) {
            LTrace("MoveDictationFiles unable to move file", (files.*file).View());
            for (const auto back : done) LFile::Move(target.*back, files.*back, kMoveWaitMs);
            return false;
        }
        done.push_back(file);
    }
    return true;
}

bool MoveDictationFiles(const DictationFiles& files, const DictationFiles& target) {
    return MoveInOrder(files, target,
                       {&DictationFiles::audio, &DictationFiles::record, &DictationFiles::notes});
}

bool PublishDictation(const DictationFiles& files, const DictationFiles& target) {
    return MoveInOrder(files, target,
                       {&DictationFiles::audio, &DictationFiles::notes, &DictationFiles::record});
}

bool RenumberDictation(const CurrentUser& user, const DictationFiles& files) {
    const std::optional<int32_t> number = NextDictationNumber(user);
    if (!number) return false;
    const DictationFiles target = DictationFiles::OfNumber(LPath(LFolderOf(files.record.View())), *number);
    if (!MoveDictationFiles(files, target)) return false;
    if (LFile::Exists(target.record)) Settings::Write(target.record, RecordKeys::kNumber, *number);
    return true;
}

LPath SetAside(const LPath& file) {
    for (int i = 1; i < 1000; ++i) {
        const LPath aside = file.WithExtension(LFormat(LLeftOver::kSetAside, i));
        if (!LFile::Exists(aside)) return LFile::Move(file, aside) ? aside : LPath();
    }
    return LPath();
}

// Whether a file beside a dictation belongs to it as a left-over: set aside by SetAside, or an
// unfinished write that the end of the program cut off.
static bool IsLeftOver(const LPath& path, const DictationFiles& files) {
    for (const LPath& unfinished :
         {files.audio.WithExtension(LLeftOver::kAudio), files.notes.WithExtension(LLeftOver::kNotes),
          LProfile::CopyOf(files.record)}) {
        if (LEqualNoCase(path.View(), unfinished.View())) return true;
    }
    std::string_view setAside = LLeftOver::kSetAsidePattern;
    setAside.remove_suffix(1);
    return LEqualNoCase(LSplitPath(path.View()).extension.substr(0, setAside.size()), setAside);
}

bool DeleteDictationFiles(const DictationFiles& files) {
    return DeleteDictationFiles(files, FolderListing(LPath(LFolderOf(files.record.View()))));
}

bool DeleteDictationFiles(const DictationFiles& files, const FolderListing& listing) {
    LProfile::Flush(files.record);
    for (const LPath* file : {&files.audio, &files.notes, &files.record}) {
        const bool mayBeThere = !listing.IsWhole() || listing.SizeOf(file->View());
        if (mayBeThere && !LFile::IsAbsent(*file) && !LFile::Delete(*file)) {
            LTrace("DeleteDictationFiles unable to delete file", file->View());
            return false;
        }
    }
    // Last: they may be all that remains of a recording whose dictation could not be deleted.
    for (const LPath& path : listing.OfBaseName(files.record)) {
        if (IsLeftOver(path, files)) LFile::Delete(path);
    }
    return true;
}

// One unit of a file time's high half is 429.5 s; 202 of them stand for a day (86,758 s). The coarse
// comparison is kept on purpose: it decides which old dictations are deleted.
constexpr uint64_t kFileTimeHighUnitsPerDay = 202;

static bool IsOld(uint64_t created, int32_t days, uint64_t now) {
    return (created >> 32) + kFileTimeHighUnitsPerDay * static_cast<uint64_t>(days) < now >> 32;
}

// Whether the files of a dictation in Sent are, or may be, its only copy.
static bool IsNeeded(const DictationFiles& files, const AskQueue& isQueued) {
    if (isQueued(files.audio) != QueueAnswer::No) return true;
    const DictationRecord record = DictationRecord::Read(files.record, 0);
    if (record.result == LReadResult::Unreadable) return true;
    if (record.result == LReadResult::Absent) {
        LFile audio;
        return LFile::OpenToRead(files.audio, audio, 0) == LReadResult::Unreadable ||
               audio.Size() > kEmptyAudioBytes;
    }
    // A record without a status was cut off while it was written.
    return record.sendStatus.empty() || record.sendStatus == RecordKeys::kStatusSending ||
           record.sendStatus == RecordKeys::kStatusFailed;
}

void DeleteOldDictations(const LPath& sentFolder, int32_t days, uint64_t now, const AskQueue& isQueued) {
    if (days <= 0) return;
    std::map<std::string, uint64_t> dictations;  // by base name, when the youngest file was created
    std::vector<LPath> others;
    LListFolder(sentFolder, "*.*", [&](const LFolderEntry& entry) {
        if (entry.isFolder || entry.name.starts_with('.')) return true;
        if (NumberOfFileName(LPath(entry.name))) {
            uint64_t& youngest = dictations[std::string(LSplitPath(entry.name).name)];
            youngest = std::max(youngest, entry.created);
        } else if (IsOld(entry.created, days, now)) {
            others.push_back(LPath::Join(sentFolder.View(), entry.name));
        }
        return true;
    });
    for (const LPath& path : others) LFile::Delete(path);
    for (const auto& [name, created] : dictations) {
        if (!IsOld(created, days, now)) continue;
        const DictationFiles files = DictationFiles::OfPath(LPath::Join(sentFolder.View(), name + ".dat"));
        if (!IsNeeded(files, isQueued)) DeleteDictationFiles(files);
    }
}

bool IsDiskLow(const DataFolder& data) {
    return IsDiskLow(LFile::FreeSpaceKb(data.folder),
                     Settings::Read(data.settingsFile, SettingsKeys::kWarnBelowMb));
}

bool IsDiskLow(uint64_t freeKb, int32_t warnBelowMb) {
    return warnBelowMb > 0 && freeKb < static_cast<uint64_t>(warnBelowMb) * 1024;
}
