#include "store/StagedDictation.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "base/LFile.h"
#include "base/LLeftOver.h"
#include "base/LProfile.h"
#include "base/LProfileText.h"
#include "base/LText.h"
#include "base/LTrace.h"
#include "store/DictationRecord.h"
#include "store/DictationStore.h"
#include "store/SettingsKeys.h"

// The move of the audio decides: whatever ends the program before it leaves nothing, whatever ends it after
// it leaves a dictation that the next start completes. Names of their own beside the dictations of Current
// were rejected: record, notes and audio each write files beside themselves, and the repair of Current would
// have to tell those of a half-loaded dictation from those of a recording.

namespace {

// Of the user whose folder this is.
LPath ImportFolder(std::string_view userFolder) {
    return LPath::Join(userFolder, std::string(LLeftOver::kImport) + "\\");
}

LPath FolderOf(const CurrentUser& user) {
    return ImportFolder(LFolderOf(user.userFile.View()));
}

LPath LockOf(const DictationFiles& staged) {
    return staged.record.WithExtension(LLeftOver::kLock);
}

}  // namespace

StagedDictation::~StagedDictation() {
    if (m_isStaged) DeleteDictationFiles(m_files);
    ReleaseNumber();
}

// The lock file is deleted: numbers do not come again, so nobody is about to open it.
void StagedDictation::ReleaseNumber() {
    if (!m_own.IsTaken()) return;
    m_own.Release();
    LFile::Delete(LockOf(DictationFiles::OfPath(m_files.record).InFolder(FolderOf(m_user))));
}

// The next number that no other session is loading under.
std::optional<int32_t> StagedDictation::TakeNumber() {
    ReleaseNumber();
    for (;;) {
        const std::optional<int32_t> number = NextDictationNumber(m_user);
        if (!number) return std::nullopt;
        const auto taken = m_own.TryTake(LockOf(DictationFiles::OfNumber(FolderOf(m_user), *number)));
        if (taken == LFileLock::Result::Failed) return std::nullopt;
        if (taken == LFileLock::Result::Taken) return number;
    }
}

bool StagedDictation::Begin(const CurrentUser& user, std::string_view name, int64_t date) {
    m_user = user;
    const LPath folder = FolderOf(m_user);
    LFile::MakeFolder(folder);
    const std::optional<int32_t> number = TakeNumber();
    if (!number) return false;
    m_files = DictationFiles::OfNumber(folder, *number);
    m_isStaged = true;
    const std::string shown = LTrimBlanks(name).empty() ? DefaultDictationName(*number) : std::string(name);
    const LProfile::Value values[] = {{RecordKeys::kName.key, shown},
                                      {RecordKeys::kNumber.key, std::to_string(*number)},
                                      {RecordKeys::kDate, std::to_string(date)}};
    if (LProfile::WriteValues(m_files.record, RecordKeys::kSection, values)) return true;
    LTrace("StagedDictation::Begin unable to write record", m_files.record.View());
    return false;
}

bool StagedDictation::TakeOtherNumber() {
    const DictationFiles before = m_files;
    LFileLock beforeOwn = std::move(m_own);  // until the files have the other number
    const std::optional<int32_t> number = TakeNumber();
    const DictationFiles target = DictationFiles::OfNumber(FolderOf(m_user), number.value_or(0));
    if (!number || !MoveDictationFiles(before, target)) {
        m_own = std::move(beforeOwn);
        return false;
    }
    m_files = target;
    beforeOwn.Release();
    LFile::Delete(LockOf(before));
    Settings::Write(m_files.record, RecordKeys::kNumber, *number);
    return true;
}

void StagedDictation::Flush() const {
    // Network redirectors need not support flushing; that costs no dictation.
    if (!LFile::IsAbsent(m_files.audio) && !LFile(m_files.audio, LFile::Open::Write).Flush())
        LTrace("StagedDictation::Flush unable to flush", m_files.audio.View());
}

bool StagedDictation::HoldsRecordOf(const DictationFiles& current) {
    const LPath user(LFolderOf(LPath(LFolderOf(current.audio.View())).WithoutSeparator().View()));
    return !LFile::IsAbsent(current.InFolder(ImportFolder(user.View())).record);
}

bool StagedDictation::Publish() {
    const DictationFiles target = m_files.InFolder(m_user.currentFolder);
    if (LFile::IsAbsent(m_files.record)) return false;
    if (target.AnyExists() || !PublishDictation(m_files, target)) return false;
    m_files = target;
    m_isStaged = false;
    return true;
}

void StagedDictation::Recover(const CurrentUser& user) {
    const LPath folder = FolderOf(user);
    std::map<std::string, std::vector<LPath>> found;  // files by base name
    const bool isWhole = LListFolder(folder, "*.*", [&](const LFolderEntry& entry) {
        const LPath path = LPath::Join(folder.View(), entry.name);
        if (!entry.isFolder) found[std::string(LSplitPath(entry.name).name)].push_back(path);
        return true;
    });
    if (!isWhole) return;
    for (const auto& [name, paths] : found) {
        LTrace("RecoverDictations dictation that was being loaded", name);
        const DictationFiles staged = DictationFiles::OfPath(paths.front());
        LFileLock own;
        if (own.TryTake(LockOf(staged)) == LFileLock::Result::Held) continue;
        const DictationFiles target = staged.InFolder(user.currentFolder);
        const bool isPublished = LFile::IsAbsent(staged.audio) && LFile::Exists(target.audio);
        if (isPublished && LFile::IsAbsent(target.record) && !PublishDictation(staged, target)) continue;
        if (!LFile::IsAbsent(staged.audio) && !LFile::Delete(staged.audio)) continue;  // is being written
        own.Release();
        for (const LPath& path : paths) LFile::Delete(path);
        LFile::Delete(LockOf(staged));
    }
}
