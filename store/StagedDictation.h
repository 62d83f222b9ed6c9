#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "base/LFileLock.h"
#include "store/CurrentUser.h"
#include "store/DictationFiles.h"
#include "store/DictationRecord.h"

// What became of a file that was to be made a dictation. Cancelled: by the user. Partly: its beginning is
// one; the rest cannot be read. Whole: it was read to its end. Either is on the disk, and not empty.
enum class LoadedFile { Cancelled, No, Partly, Whole };

// A dictation that is being made out of a file of others. Its files stand in the folder "Import" of the user
// until they are whole, so that no listing of Current shows half of it, also not that of another session on
// the same folder. Publish then moves them, the record last. What is not published goes with its object.
// Errors: false is traced; the caller tells the user.
// Thread: one at a time.
class StagedDictation {
public:
    StagedDictation() = default;
    ~StagedDictation();
    StagedDictation(const StagedDictation&) = delete;
    StagedDictation& operator=(const StagedDictation&) = delete;

    // Takes the next number, which stays used whatever follows, and writes the record. Without a name the
    // dictation gets the one of a new dictation.
    // Units:  date in seconds since 1970.
    bool Begin(const CurrentUser& user, std::string_view name, int64_t date);
    // Another number, in place of one that a record of Current claims in another file.
    bool TakeOtherNumber();
    // Puts the audio on the disk itself, which may take seconds.
    void Flush() const;
    // Moves the dictation to Current. On failure nothing of it is there.
    bool Publish();

    int32_t Number() const { return NumberOfFileName(m_files.record).value_or(0); }
    // Where the files stand now: in Import, then in Current.
    const DictationFiles& Files() const { return m_files; }

    // For the program's start: settles what its end at a wrong moment left in Import. A dictation whose audio
    // is in Current already is whole, and is completed; all else is deleted, but for what another session is
    // still writing.
    static void Recover(const CurrentUser& user);
    // Whether the record of a dictation whose audio is in Current still stands in Import.
    static bool HoldsRecordOf(const DictationFiles& current);

private:
    std::optional<int32_t> TakeNumber();
    void ReleaseNumber();

    CurrentUser m_user;
    DictationFiles m_files;
    // Of the number in Import, held from Begin to the end of the object: another session neither clears the
    // files away nor loads under the same number.
    LFileLock m_own;
    bool m_isStaged = false;
};
