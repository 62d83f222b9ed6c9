#include "store/DictationStore.h"

#include "base/LFile.h"
#include "base/LProfile.h"
#include "base/LText.h"
#include "base/LTrace.h"
#include "store/DictationRecord.h"
#include "store/NotesFile.h"
#include "store/SettingsKeys.h"

static bool IsTaken(const CurrentUser& user, int32_t number) {
    return DictationFiles::OfNumber(user.currentFolder, number).AnyExists() ||
           DictationFiles::OfNumber(user.sentFolder, number).AnyExists();
}

int32_t NextDictationNumber(const CurrentUser& user) {
    const int32_t stored = Settings::Read(user.userFile, UserKeys::kNumber);
    int32_t number = stored < 0 ? UserKeys::kNumber.defaultValue : stored % kDictationNumbers;
    for (int32_t tried = 0; tried < kDictationNumbers && IsTaken(user, number); ++tried) {
        number = (number + 1) % kDictationNumbers;
    }
    Settings::Write(user.userFile, UserKeys::kNumber, number + 1);
    return number;
}

std::optional<NewDictation> CreateDictation(const CurrentUser& user, int64_t now) {
    NewDictation created;
    created.number = NextDictationNumber(user);
    created.files = DictationFiles::OfNumber(user.currentFolder, created.number);
    const LPath& record = created.files.record;
    Settings::Write(record, RecordKeys::kName, DefaultDictationName(created.number));
    Settings::Write(record, RecordKeys::kNumber, created.number);
    Settings::WriteSeconds(record, RecordKeys::kSection, RecordKeys::kDate, now);
    if (!LFile::Exists(record)) {
        LTrace("CreateDictation unable to write record", record.View());
        return std::nullopt;
    }
    return created;
}

std::vector<LPath> ListRecords(const LPath& folder) {
    std::vector<LPath> records;
    LListFolder(folder, "*.dat", [&](const LFolderEntry& entry) {
        // Short names let the pattern match longer extensions too.
        const bool isRecord = !entry.isFolder && LEqualNoCase(LSplitPath(entry.name).extension, ".dat");
        const LPath path = isRecord ? LPath::Join(folder.View(), entry.name) : LPath();
        if (!path.Empty()) records.push_back(path);
        return true;
    });
    return records;
}

bool SetPriority(const LPath& record, std::string_view priority) {
    return Settings::Write(record, RecordKeys::kPriority, priority);
}

constexpr char kSetAsideExtension[] = ".bad%d";
constexpr char kSetAsidePattern[] = ".bad*";

LPath SetAsideAudio(const DictationFiles& files) {
    for (int i = 1; i < 1000; ++i) {
        const LPath aside = files.audio.WithExtension(LFormat(kSetAsideExtension, i));
        if (!LFile::Exists(aside)) return LFile::Move(files.audio, aside) ? aside : LPath();
    }
    return LPath();
}

// What was set aside, and what the end of the program left of a file that was being written.
static void DeleteLeftOvers(const DictationFiles& files) {
    const std::string_view folder = LFolderOf(files.audio.View());
    std::vector<LPath> found;
    LListFolder(LPath(folder), std::string(LSplitPath(files.audio.View()).name) + kSetAsidePattern,
                [&](const LFolderEntry& entry) {
                    found.push_back(LPath::Join(folder, entry.name));
                    return true;
                });
    found.push_back(files.audio.WithExtension(kUnfinishedAudioExtension));
    found.push_back(files.notes.WithExtension(NotesFile::kUnfinishedExtension));
    found.push_back(LProfile::CopyOf(files.record));
    for (const LPath& path : found) LFile::Delete(path);
}

bool DeleteDictationFiles(const DictationFiles& files) {
    LProfile::Flush(files.record);
    DeleteLeftOvers(files);
    for (const LPath* file : {&files.audio, &files.notes, &files.record}) {
        if (LFile::Exists(*file) && !LFile::Delete(*file)) {
            LTrace("DeleteDictationFiles unable to delete file", file->View());
            return false;
        }
    }
    return true;
}

// One unit of a file time's high half is 429.5 s; 202 of them stand for a day (86,758 s). The coarse
// comparison is kept on purpose: it decides which old dictations are deleted.
constexpr uint64_t kFileTimeHighUnitsPerDay = 202;

static bool IsOld(uint64_t created, int32_t days, uint64_t now) {
    return (created >> 32) + kFileTimeHighUnitsPerDay * static_cast<uint64_t>(days) < now >> 32;
}

void DeleteOldFiles(const LPath& sentFolder, int32_t days, uint64_t now,
                    const std::function<bool(const LPath&)>& isWaiting) {
    if (days <= 0) return;
    std::vector<LPath> old;  // deleted after the listing, which need not like to lose entries meanwhile
    LListFolder(sentFolder, "*.*", [&](const LFolderEntry& entry) {
        if (!entry.isFolder && !entry.name.starts_with('.') && IsOld(entry.created, days, now)) {
            old.push_back(LPath::Join(sentFolder.View(), entry.name));
        }
        return true;
    });
    for (const LPath& path : old) {
        if (!isWaiting(DictationFiles::OfPath(path).audio)) LFile::Delete(path);
    }
}

bool IsDiskLow(const DataFolder& data) {
    return IsDiskLow(LFile::FreeSpaceKb(data.folder),
                     Settings::Read(data.settingsFile, SettingsKeys::kWarnBelowMb));
}

bool IsDiskLow(uint64_t freeKb, int32_t warnBelowMb) {
    return warnBelowMb > 0 && freeKb < static_cast<uint64_t>(warnBelowMb) * 1024;
}
