#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "base/LFile.h"
#include "base/LPath.h"

// What the record file of a dictation says. Single keys are written with RecordKeys (store/SettingsKeys.h).
struct DictationRecord {
    std::string name;
    std::optional<int32_t> number;
    std::optional<int64_t> date;  // of creation, seconds since 1970
    std::string priority = "Normal";
    std::optional<int64_t> sendDate;
    std::string recipient;
    std::string sendStatus;
    // Unreadable: the values are empty because the file could not be read, and must be neither written nor
    // sent.
    LReadResult result = LReadResult::Absent;

    // Opens the file once, and tries for waitMs while it cannot be read. What is missing is empty; a missing
    // priority is "Normal".
    static DictationRecord Read(const LPath& record, uint32_t waitMs = kReadWaitMs);
};

// The name of a new dictation, "Dictation 234" for number 1234.
std::string DefaultDictationName(int32_t number);

// The number that stands in a record's file name ("00001234.dat"); nothing when it is no such name.
std::optional<int32_t> NumberOfFileName(const LPath& path);

// What a user changes in a record. False when it cannot be written, or is gone: another one is not begun.
bool StoreName(const LPath& record, std::string_view name);
bool StorePriority(const LPath& record, std::string_view priority);  // "High", "Normal" or "Low"

// Writes the keys that belong to being sent; empty ones are removed. Used for sending and for taking it back.
// False when the record cannot be written.
bool WriteSendKeys(const LPath& record, const DictationRecord& values);

// Mends a record that was cut off while it was written: without a number it would share its row with every
// other record that has none. Writes the number of the file name, and a name and a date where they are
// missing, to the file and to the given values. Does nothing to a record with a number, or
// to one that cannot be read.
void RepairRecord(const LPath& record, DictationRecord& values, int64_t now);
