#pragma once

#include <cstdint>
#include <string>

#include "store/DictationFiles.h"

// What the list shows of one dictation, read from its three files with each opened once.
struct DictationRow {
    DictationFiles files;
    int32_t number = 0;  // the record's "number"
    std::string name;
    int64_t date = 0;  // seconds since 1970; shown with no time-zone shift
    std::string duration;
    std::string priority;
    std::string notes;
};

// Missing files give empty columns, a length of zero and the normal priority.
DictationRow LoadDictationRow(const LPath& record);

// "mm:ss", rounded to whole seconds.
std::string FormatDuration(int32_t lengthMs);
