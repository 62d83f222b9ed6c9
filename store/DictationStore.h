#pragma once

#include <cstdint>
#include <optional>

#include "base/LPath.h"
#include "store/CurrentUser.h"
#include "store/DictationFiles.h"
#include "store/DictationRecord.h"
#include "store/FolderListing.h"
#include "store/QueueAnswer.h"

// The dictations of a user: files in his Current folder, and in his Sent folder once they are sent.
// Errors: empty results and false are traced; the caller tells the user.
// Thread: the window thread; numbers are also taken by the one that loads an audio file, while the window
//         thread waits for it and takes none.

// Dictation numbers run from 0 to 99,999,999, the eight digits of a file name, and then start again.
constexpr int32_t kDictationNumbers = 100000000;

// Takes the next number from the user file, which then holds the one after it; used for new, imported and
// transferred dictations alike. Numbers with any file in Current or Sent are skipped, so that a lost or
// wrapped counter never gives an old dictation's number again. Nothing when the user file exists and cannot
// be read for a second: a guessed number may have been used before.
std::optional<int32_t> NextDictationNumber(const CurrentUser& user);

struct NewDictation {
    int32_t number = 0;
    DictationFiles files;
};

// The name of a dictation by its number.
using DictationName = std::string (*)(int32_t number);

// Takes a number and writes the record with name, number and date (now, seconds since 1970). Nothing when the
// user file cannot be read or the record cannot be written.
std::optional<NewDictation> MakeDictation(const CurrentUser& user, int64_t now,
                                          DictationName name = DefaultDictationName);

// Moves audio, record and notes, in this order, to names that nothing has. Waits two seconds for each file
// that another program holds. False when one cannot be moved; those before it are then put back.
bool MoveDictationFiles(const DictationFiles& files, const DictationFiles& target);

// The same for a dictation that becomes visible at its new place: the record, by which it is listed, goes
// last.
bool PublishDictation(const DictationFiles& files, const DictationFiles& target);

// Gives a dictation the next number within its folder, in its file names and in its record. False, with
// everything as it was, when a file cannot be renamed.
bool RenumberDictation(const CurrentUser& user, const DictationFiles& files);

// Renames a file of a dictation that does not hold what its name says, as the audio's that holds no audio, to
// make way for a new one ("00000012.bad1"): it may be all that is left of a recording. Returns the new path,
// empty when it could not be renamed.
LPath SetAside(const LPath& file);

// Deletes audio, notes and record, in this order, then left-overs and files that were set aside. When a file
// cannot be deleted the rest stays and the result is false, so that audio in use does not lose its record.
bool DeleteDictationFiles(const DictationFiles& files);
// The same for one of many. listing: of their folder, made after the last change of their files.
bool DeleteDictationFiles(const DictationFiles& files, const FolderListing& listing);

// Deletes the files of a Sent folder that were created more than the given number of days ago (0 or less:
// none). The files of one dictation go together, by the age of the youngest. Dictations without another copy
// stay: those that are or may be in the send queue, that were never delivered, or that have no record to say
// they were.
// Units:  now is a file time, 100 ns since 1601-01-01 UTC.
void DeleteOldDictations(const LPath& sentFolder, int32_t days, uint64_t now, const AskQueue& isQueued);

// Whether the drive of the data folder has less free space than the setting "warnbelowmb" asks for; 0 or less
// turns the warning off.
bool IsDiskLow(const DataFolder& data);
bool IsDiskLow(uint64_t freeKb, int32_t warnBelowMb);
