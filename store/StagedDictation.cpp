#include "store/StagedDictation.h"

#include <map>
#include <string>
#include <vector>

#include "base/LFile.h"
#include "base/LLeftOver.h"
#include "base/LProfile.h"
#include "base/LTrace.h"
#include "store/DictationRecord.h"
#include "store/DictationStore.h"
#include "store/SettingsKeys.h"

// The move of the audio decides: whatever ends the program before it leaves nothing, whatever ends it after
// it leaves a dictation that the next start completes. Names of their own beside the dictations of Current
// were rejected: record, notes and audio each write files beside themselves, and the repair of Current would
// have to tell those of a half-loaded dictation from those of a recording.

static LPath FolderOf(const CurrentUser& user) {
    return LPath::Join(LFolderOf(user.userFile.View()), std::string(LLeftOver::kImport) + "\\");
}

StagedDictation::~StagedDictation() {
    if (m_isStaged) DeleteDictationFiles(m_files);
}

bool StagedDictation::Begin(const CurrentUser& user, std::string_view name, int64_t date) {
    m_user = user;
    const std::optional<int32_t> number = NextDictationNumber(m_user);
    if (!number) return false;
    const LPath folder = FolderOf(m_user);
    LFile::MakeFolder(folder);
    m_files = DictationFiles::OfNumber(folder, *number);
    m_isStaged = true;
    const std::string shown = name.empty() ? DefaultDictationName(*number) : std::string(name);
    const LProfile::Value values[] = {{RecordKeys::kName.key, shown},
                                      {RecordKeys::kNumber.key, std::to_string(*number)},
                                      {RecordKeys::kDate, std::to_string(date)}};
    if (LProfile::WriteValues(m_files.record, RecordKeys::kSection, values)) return true;
    LTrace("StagedDictation::Begin unable to write record", m_files.record.View());
    return false;
}

bool StagedDictation::TakeOtherNumber() {
    const DictationFiles before = m_files;
    return RenumberDictation(m_user, before, &m_files);
}

bool StagedDictation::Publish() {
    const DictationFiles target = m_files.InFolder(m_user.currentFolder);
    // Network redirectors need not support flushing; that costs no dictation.
    if (!LFile::IsAbsent(m_files.audio) && !LFile(m_files.audio, LFile::Open::Write).Flush())
        LTrace("StagedDictation::Publish unable to flush", m_files.audio.View());
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
        const DictationFiles target = staged.InFolder(user.currentFolder);
        const bool isPublished = LFile::IsAbsent(staged.audio) && LFile::Exists(target.audio);
        if (isPublished && LFile::IsAbsent(target.record)) PublishDictation(staged, target);
        if (!LFile::IsAbsent(staged.audio) && !LFile::Delete(staged.audio)) continue;  // is being written
        for (const LPath& path : paths) LFile::Delete(path);
    }
}
