#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "base/LFile.h"
#include "base/LPath.h"

// The contents of a dictation's record file. Single keys are written with RecordKeys (store/SettingsKeys.h).
struct DictationRecord {
    std::string name;
    std::optional<int32_t> number;
    std::optional<int64_t> date;  // of creation, seconds since 1970-01-01 00:00 UTC
    std::string priority = "Normal";
    std::optional<int64_t> sendDate;
    std::string recipient;
    std::string sendStatus;
    // Unreadable: the file could not be read. The values are then empty and must be neither written nor sent.
    LReadResult result = LReadResult::Absent;

    // Opens the file once, trying for waitMs while it cannot be read. Missing keys are empty; a missing
    // priority is "Normal".
    static DictationRecord Read(const LPath& record, uint32_t waitMs = kReadWaitMs);
};

// The name of a new dictation, "Dictation 234" for number 1234.
std::string DefaultDictationName(int32_t number);
// The name of one that is recorded from a portable recorder, "Tape 1234".
std::string TapeName(int32_t number);

// The number in a dictation's file name ("00001234.dat"); nothing for a name that is not of eight digits.
std::optional<int32_t> NumberOfFileName(const LPath& path);

// Changes by the user. False when the record cannot be written, or is gone: a new file is not begun.
bool StoreName(const LPath& record, std::string_view name);
bool StorePriority(const LPath& record, std::string_view priority);  // "High", "Normal" or "Low"

// What the typist reports of the work on a sent dictation; errors as above.
bool StoreStatus(const LPath& record, std::string_view status);

// Writes the keys "senddate", "recipient" and "sendstatus", removing empty ones; used for sending and for
// taking it back. False when the record cannot be written.
bool WriteSendKeys(const LPath& record, const DictationRecord& values);

// Completes a record that was cut off while it was written: without a number it would share its row with
// every other record that has none. Writes the number of the file name, and name and date where they are
// missing, to the file and into values. Does nothing to a record with a number, or to one that could not be
// read.
// Units:  now in seconds since 1970.
void RepairRecord(const LPath& record, DictationRecord& values, int64_t now);
