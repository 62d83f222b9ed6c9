#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "store/DictationFiles.h"
#include "store/FolderListing.h"

// What the list shows of one dictation, read from its three files with each opened once.
struct DictationRow {
    DictationFiles files;
    int32_t number = 0;  // the record's "number"
    std::string name;
    int64_t date = 0;  // seconds since 1970; shown with no time-zone shift
    std::string duration;
    std::string priority;
    std::string notes;
    // Another program keeps the record from being read: number and name are those of its file, and the row is
    // to be loaded again later.
    bool isUnreadable = false;
};

// Missing files give empty columns, a length of zero and the normal priority. Waits for nobody. A record that
// was cut off while it was written is mended (RepairRecord).
DictationRow LoadDictationRow(const LPath& record);
// The same for one of many: what a whole listing of its folder lacks is not opened. A listed size of 0 is not
// believed.
DictationRow LoadDictationRow(const LPath& record, const FolderListing& listing);

// What a typed name makes of a dictation's name: nothing when it is blank or the same.
std::optional<std::string> ChangedName(std::string_view name, std::string_view typed);

// "mm:ss", rounded to whole seconds.
std::string FormatDuration(int32_t lengthMs);
