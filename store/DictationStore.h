#pragma once

#include <cstdint>
#include <optional>

#include "base/LPath.h"
#include "store/CurrentUser.h"
#include "store/DictationFiles.h"
#include "store/FolderListing.h"
#include "store/QueueAnswer.h"

// The dictations of a user: files in his Current folder, and in his Sent folder once they are sent.
// Thread: the window thread.

// Dictation numbers run from 0 to 99,999,999 and begin again.
constexpr int32_t kDictationNumbers = 100000000;

// Takes the next number from the user file, which then holds the one after it. Numbers of which any file
// exists in Current or Sent are passed over, so that a lost or wrapped counter never names an old dictation
// again. For new, imported and transferred dictations alike. Nothing when the user file is there and cannot
// be read for a second: a number that was guessed may have been used before.
std::optional<int32_t> NextDictationNumber(const CurrentUser& user);

struct NewDictation {
    int32_t number = 0;
    DictationFiles files;
};

// Takes a number and writes the record with name, number and date (now, seconds since 1970). Nothing when the
// user file cannot be read or the record not written.
std::optional<NewDictation> MakeDictation(const CurrentUser& user, int64_t now);

// Gives a dictation the next number within its folder, in the names of its files and in its record. Files
// that others keep open are waited for. False, with everything as it was, when one cannot be renamed.
bool RenumberDictation(const CurrentUser& user, const DictationFiles& files);

// Moves a file that stands under the audio's name but holds no audio out of the way of a recording, since it
// may be all that is left of one ("00000012.bad1"). The new path, empty when it could not be moved.
LPath SetAsideAudio(const DictationFiles& files);

// Deletes audio, notes and record, in this order, then what was set aside or left over. When one cannot be
// deleted the rest stays and the result is false, so that audio in use is not left behind without its record.
bool DeleteDictationFiles(const DictationFiles& files);
// The same for one of many; listing: of their folder, made after the last of their files.
bool DeleteDictationFiles(const DictationFiles& files, const FolderListing& listing);

// Deletes the entries of a Sent folder that were created more than so many days ago (0 or less: none); the
// files of one dictation go together, by the youngest of them. now is a file time. Audio that has no other
// home stays: what is or may be in the send queue, was never delivered, or lies there without a record that
// says so.
void DeleteOldDictations(const LPath& sentFolder, int32_t days, uint64_t now, const AskQueue& isQueued);

// True when the drive of the data folder has less free space than the setting "warnbelowmb" asks for.
bool IsDiskLow(const DataFolder& data);
bool IsDiskLow(uint64_t freeKb, int32_t warnBelowMb);
