#include "app/window/InsertOffers_win.h"

#include <utility>

#include "app/window/DictationRow.h"
#include "audio/stream/LSoundTime.h"
#include "audio/wave/LInsertWave.h"
#include "audio/wave/LWaveFile.h"
#include "base/LArith.h"
#include "base/LCopyFile.h"
#include "base/LFile.h"
#include "base/LText.h"
#include "base/LTime.h"
#include "base/LTrace.h"
#include "store/DictationRecord.h"
#include "store/DictationStore.h"

// What the file of an insertion says is checked before it is believed: the temporary folder belongs to all
// programs, which may delete the recording there, or make another file of its name. A file that is no WAV
// file is not ours and is left alone. A recording that the dictation holds already, byte for byte, was merged
// by a run that ended before it could say so.

namespace {

constexpr char kCaption[] = "Insert Recording";
constexpr char kQuestion[] =
    "An insertion could not be completed.\n\n"
    "What you recorded (%s) to insert into \"%.80s\" at %s is kept. Do you want to insert it now?\n\n"
    "Choose No to make it a dictation of its own, or Cancel to be asked again later.";
constexpr char kMissing[] =
    "An insertion could not be completed.\n\n"
    "What was recorded to be inserted into \"%.80s\" cannot be found or read here. It was kept as\n\n%s\n\n"
    "Do you want to go on without it? Choose No to be asked again later.";
constexpr char kDamaged[] =
    "An insertion could not be completed.\n\n"
    "The file that tells what was recorded to be inserted into \"%.80s\" is damaged. It was kept as\n\n%s\n\n"
    "What you recorded may still lie in the folder for temporary files, in a file whose name begins with "
    "\"tmp\".";
constexpr char kHeld[] =
    "An insertion waits to be completed, and its files cannot be read or deleted now. They may be open in "
    "another program.\n\nPlease try again.";
constexpr char kOwnNow[] =
    "An insertion could not be completed.\n\n"
    "The dictation that it belongs to is no longer here. What you recorded (%s) is now the dictation "
    "\"%.80s\".";
constexpr char kCannotMakeOwn[] =
    "The recording could not be made a dictation of its own. The disk might be full or write-protected.\n\n"
    "It is kept, and you are asked again later.";

// False when it cannot be told what the file holds: another session records it, perhaps, or its drive does
// not answer. An absent file can be told.
bool CanBeRead(const LPath& recording) {
    LFile file(recording, LFile::Open::Alone);
    uint8_t first = 0;
    return file.IsOpen() ? file.Size() == 0 || file.ReadExact({&first, 1}) : LFile::IsAbsent(recording);
}

// The same with patience for a virus scanner: a command waits for the answer.
bool CanBeReadSoon(const LPath& recording) {
    constexpr uint32_t kPollMs = 20;
    for (const uint32_t begun = LTickMs(); !CanBeRead(recording); LSleep(kPollMs))
        if (LTickMs() - begun >= kReadWaitMs) return false;
    return true;
}

bool IsEmptyFile(const LPath& path) {
    const LFile file(path, LFile::Open::Read);
    return file.IsOpen() && file.Size() == 0;
}

}  // namespace

void InsertOffers::OfferAll() {
    for (const DictationFiles& files : PendingInsert::List(m_state.user.currentFolder)) {
        if (!m_runner.MayGoOn()) return;
        OfferAndShow(files);
    }
}

void InsertOffers::OfferThoseLater() {
    for (const DictationFiles& files : std::exchange(m_later, {})) OfferAndShow(files);
}

// Its dictation becomes the current one, so that the user sees what was done.
void InsertOffers::OfferAndShow(const DictationFiles& files) {
    if (!m_transport.IsBusy() && !files.IsGone()) m_list.SelectFile(files.record);
    Take(files, Why::Nothing);
}

bool InsertOffers::OfferOrTell(const DictationFiles& files) {
    const Outcome outcome = Take(files, Why::Command);
    if (outcome == Outcome::Held) m_runner.UnaskedBox(kHeld, kCaption, MB_OK | MB_ICONEXCLAMATION);
    return outcome == Outcome::Settled;
}

// A device's Record that comes while the question stands must not ask it again.
InsertOffers::Outcome InsertOffers::Take(const DictationFiles& files, Why why) {
    if (std::exchange(m_isAsking, true)) return Outcome::Later;
    const Outcome outcome = Settle(files, why);
    m_isAsking = false;
    return outcome;
}

// Without a command, a recording that cannot be opened is left to another time: its session may be at work on
// it. A command would be refused for ever where it belongs to another Windows user.
InsertOffers::Outcome InsertOffers::Settle(const DictationFiles& files, Why why) {
    PendingInsert insert;
    const PendingInsert::Result result = PendingInsert::Read(files, insert);
    if (result == PendingInsert::Result::Absent) return Outcome::Settled;
    if (result == PendingInsert::Result::Held) return Outcome::Held;
    if (result == PendingInsert::Result::Damaged) return SetAside(files);
    if (why == Why::Nothing && !CanBeRead(insert.recording)) return Outcome::Held;
    if (!CanBeReadSoon(insert.recording)) return AskMissing(files, insert);
    LWaveInfo info;
    if (!LWaveFile::ReadInfo(insert.recording, info)) return AskMissing(files, insert);
    const LInsertWave merge(files.audio, insert.atFrame, insert.recording);
    if (info.Frames() < 1 || merge.IsDone()) return Finish(files, insert);
    return files.IsGone() ? MakeOwn(files, insert) : Ask(files, insert);
}

// A damaged note would be in the way of every other insertion.
InsertOffers::Outcome InsertOffers::SetAside(const DictationFiles& files) {
    const LPath aside = PendingInsert::SetAside(files);
    if (aside.Empty()) return Outcome::Held;
    m_runner.UnaskedBox(LFormat(kDamaged, m_list.NameOf(files.record).c_str(), aside.c_str()), kCaption,
                        MB_OK | MB_ICONEXCLAMATION);
    return Outcome::Settled;
}

// The recording lies on another machine or in another session's folder, or is damaged. An empty file holds
// nothing to ask about.
InsertOffers::Outcome InsertOffers::AskMissing(const DictationFiles& files, const PendingInsert& insert) {
    if (IsEmptyFile(insert.recording)) return Finish(files, insert);
    const std::string text = LFormat(kMissing, m_list.NameOf(files.record).c_str(), insert.recording.c_str());
    const int answer = m_runner.UnaskedBox(text, kCaption, MB_YESNO | MB_ICONEXCLAMATION | MB_DEFBUTTON2);
    if (answer != IDYES) return Outcome::Later;
    return PendingInsert::Forget(files) ? Outcome::Settled : Outcome::Held;
}

InsertOffers::Outcome InsertOffers::Ask(const DictationFiles& files, const PendingInsert& insert) {
    LWaveInfo info;
    LWaveFile::ReadInfo(insert.recording, info);
    const std::string length = FormatDuration(LWaveFile::LengthMs(insert.recording));
    const std::string place =
        FormatDuration(FramesToMs(insert.atFrame, static_cast<int32_t>(info.format.SampleRate())));
    const int answer = m_runner.UnaskedBox(
        LFormat(kQuestion, length.c_str(), m_list.NameOf(files.record).c_str(), place.c_str()), kCaption,
        MB_YESNOCANCEL | MB_ICONEXCLAMATION);
    // A device may have recorded while the question stood, and with it another insertion.
    PendingInsert now;
    const PendingInsert::Result result = PendingInsert::Read(files, now);
    if (result == PendingInsert::Result::Absent) return Outcome::Settled;
    if (result != PendingInsert::Result::Values || !(now.recording == insert.recording)) return Outcome::Held;
    if (answer == IDYES) return Merge(files, insert);
    return answer == IDNO ? MakeOwn(files, insert) : Outcome::Later;
}

InsertOffers::Outcome InsertOffers::Merge(const DictationFiles& files, const PendingInsert& insert) {
    if (!m_transport.Stop()) return Outcome::Later;
    LInsertWave merge(files.audio, insert.atFrame, insert.recording);
    if (m_runner.RunProcess(merge, kCaption) != ProcessResult::Done) return Outcome::Later;
    LWaveInfo added;
    LWaveFile::ReadInfo(insert.recording, added);
    const auto rate = static_cast<int32_t>(added.format.SampleRate());
    m_transport.EvInserted(files, FramesToMs(insert.atFrame, rate), Saturate(added.LengthMs()));
    m_list.UpdateLater(files.record);
    return Finish(files, insert);
}

// Gives the recording a number and a record of its own. It is copied, since the temporary folder may lie on
// another drive; until the copy is whole the note tells of the recording.
InsertOffers::Outcome InsertOffers::MakeOwn(const DictationFiles& files, const PendingInsert& insert) {
    const std::string length = FormatDuration(LWaveFile::LengthMs(insert.recording));
    const bool isOrphan = files.IsGone();
    const std::string of = isOrphan ? "" : m_list.NameOf(files.record);
    const std::optional<NewDictation> own = MakeDictation(m_state.user, LNowSeconds());
    ProcessResult result = ProcessResult::Failed;
    if (own) {
        LProcessCopyFile copy(insert.recording, own->files.audio);
        result = m_runner.RunProcess(copy, kCaption);
    }
    if (result != ProcessResult::Done) {
        LTrace("InsertOffers::MakeOwn unable to copy", insert.recording.View());
        if (own) DeleteDictationFiles(own->files);
        if (result == ProcessResult::Failed) m_runner.Tell(kCannotMakeOwn);
        return Outcome::Later;
    }
    if (!of.empty()) StoreName(own->files.record, "Insertion for " + of);
    Finish(files, insert);
    m_list.AddFile(own->files.record);
    if (isOrphan)
        m_runner.TellAtRest(LFormat(kOwnNow, length.c_str(), m_list.NameOf(own->files.record).c_str()));
    return Outcome::Settled;
}

// The recording is in its dictation: deletes its own file, and then the note that tells of it.
InsertOffers::Outcome InsertOffers::Finish(const DictationFiles& files, const PendingInsert& insert) {
    const bool isGone = LFile::Delete(insert.recording, kMoveWaitMs) || LFile::IsAbsent(insert.recording);
    return isGone && PendingInsert::Forget(files) ? Outcome::Settled : Outcome::Held;
}

bool InsertOffers::Discard(const DictationFiles& files) {
    PendingInsert insert;
    const PendingInsert::Result result = PendingInsert::Read(files, insert);
    if (result == PendingInsert::Result::Absent) return true;
    if (result == PendingInsert::Result::Held) return false;
    if (result == PendingInsert::Result::Damaged) return PendingInsert::Forget(files);
    if (!CanBeReadSoon(insert.recording)) return false;
    LWaveInfo info;
    const bool isOurs = LWaveFile::ReadInfo(insert.recording, info) || IsEmptyFile(insert.recording);
    return isOurs ? Finish(files, insert) == Outcome::Settled : PendingInsert::Forget(files);
}
