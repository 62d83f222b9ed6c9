#include "store/TakeBack.h"

#include "base/LFile.h"
#include "base/LProfile.h"
#include "base/LTime.h"
#include "base/LTrace.h"
#include "store/DictationRecord.h"
#include "store/DictationStore.h"
#include "store/NotesFile.h"

namespace TakeBack {

// Whether there is no such file. A folder that has the name does not count as one.

static bool IsNone(const LPath& sent) {
    return LFile::IsAbsent(sent) || LFile::IsFolder(sent);
}

static bool Move(const LPath& sent, const LPath& current) {
    if (LFile::Move(sent, current, kMoveWaitMs)) return true;
    LTrace("TakeBack::Move unable to move file", sent.View());
    return false;
}

// Makes a dictation from audio whose place is taken. Cut off between moving the audio and writing the record,
// it leaves audio without a record, which the next start repairs.
static bool MakeOwnDictation(const CurrentUser& user, const LPath& audio, const std::string& name) {
    const std::optional<int32_t> number = NextDictationNumber(user);
    if (!number) return false;
    const DictationFiles own = DictationFiles::OfNumber(user.currentFolder, *number);
    const int64_t recorded = LFile(audio, LFile::Open::Read).WriteTime();
    if (!Move(audio, own.audio)) return false;
    DictationRecord values;
    if (!name.empty()) values.name = name + " (2)";
    RepairRecord(own.record, values, recorded > 0 ? recorded : LNowSeconds());
    return true;
}

bool Audio(const CurrentUser& user, const DictationFiles& sent, const DictationFiles& current) {
    if (IsNone(sent.audio)) return true;
    if (LFile::IsAbsent(current.audio)) return Move(sent.audio, current.audio);
    const LPath& record = LFile::IsAbsent(current.record) ? sent.record : current.record;
    return MakeOwnDictation(user, sent.audio, DictationRecord::Read(record).name);
}

bool Record(const DictationFiles& sent, const DictationFiles& current) {
    if (IsNone(sent.record) || !LFile::IsAbsent(current.record)) return true;
    LProfile::Flush(sent.record);
    return Move(sent.record, current.record);
}

bool Notes(const DictationFiles& sent, const DictationFiles& current) {
    if (IsNone(sent.notes)) return true;
    if (LFile::IsAbsent(current.notes)) return Move(sent.notes, current.notes);
    return NotesFile::Append(current.notes, sent.notes);
}

}  // namespace TakeBack
