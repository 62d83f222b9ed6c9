#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "base/LPath.h"
#include "store/CurrentUser.h"
#include "store/DictationFiles.h"

// The dictations of a user: files in his Current folder, and in his Sent folder once they are sent.
// Thread: the window thread.

// Dictation numbers run from 0 to 99,999,999 and begin again.
constexpr int32_t kDictationNumbers = 100000000;

// Takes the next number from the user file, which then holds the one after it. Numbers of which any file
// exists in Current or Sent are passed over, so that a lost or wrapped counter never names an old dictation
// again. For new, imported and transferred dictations alike.
int32_t NextDictationNumber(const CurrentUser& user);

struct NewDictation {
    int32_t number = 0;
    DictationFiles files;
};

// Takes a number and writes the record with name, number and date (now, seconds since 1970). Nothing when the
// record cannot be written.
std::optional<NewDictation> CreateDictation(const CurrentUser& user, int64_t now);

// The paths of all record files of a folder, in the order in which the file system yields them.
std::vector<LPath> ListRecords(const LPath& folder);

// "High", "Normal" or "Low". False when the record does not take it.
bool SetPriority(const LPath& record, std::string_view priority);

// Moves a file that stands under the audio's name but holds no audio out of the way of a recording, since it
// may be all that is left of one ("00000012.bad1"). The new path, empty when it could not be moved.
LPath SetAsideAudio(const DictationFiles& files);

// Deletes audio, notes and record, in this order, and what was set aside or left over. When one cannot be
// deleted the rest stays and the result is false, so that audio in use is not left behind without its record.
bool DeleteDictationFiles(const DictationFiles& files);

// Deletes the entries of a Sent folder that were created more than so many days ago (0 or less: none). now is
// a file time. What is still waiting in the send queue stays: isWaiting is asked with the path of the audio
// file.
void DeleteOldFiles(const LPath& sentFolder, int32_t days, uint64_t now,
                    const std::function<bool(const LPath& sentAudio)>& isWaiting);

// True when the drive of the data folder has less free space than the setting "warnbelowmb" asks for.
bool IsDiskLow(const DataFolder& data);
bool IsDiskLow(uint64_t freeKb, int32_t warnBelowMb);
