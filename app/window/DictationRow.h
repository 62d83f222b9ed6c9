#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "store/DictationFiles.h"
#include "store/FolderListing.h"

// The texts and values that the list shows of one dictation, read from its three files, each opened once.
// Control characters in the files' texts are blanks here, and stay in the files.
struct DictationRow {
    DictationFiles files;
    int32_t number = 0;  // the record's "number"
    std::string name;
    int64_t date = 0;  // seconds since 1970; shown with no time-zone shift
    // "mm:ss".
    std::string duration;
    std::string priority;
    std::string notes;
    bool hasAudio = false;
    // Another program holds the record. Number and name are then those of the file name, and the row is to be
    // loaded again later.
    bool isUnreadable = false;
    bool isAbsent = false;  // there is no record
};

// The sign of a row: what the dictation holds, and what comes with it.
struct RowSign {
    enum class Holds { Nothing, Recording, RecordingNow };

    Holds holds = Holds::Nothing;
    bool hasNotes = false;
    bool isHigh = false;  // of high priority
    bool operator==(const RowSign&) const = default;
};
RowSign SignOf(const DictationRow& row, bool isBeingRecorded);

// The names of the priorities, in the order of their commands.
constexpr const char* kPriorities[] = {"High", "Normal", "Low"};
// Index of a priority's name; -1 for any other text.
int PriorityIndex(std::string_view name);

// Width of the last column of a list, given the room for all and the widths of the others; 0 where too little
// is left for a text.
constexpr int kLeastColumnWidth = 24;  // pixels
constexpr int LastColumnWidth(int room, int others) {
    return room - others >= kLeastColumnWidth ? room - others : 0;
}

// Width of the names' column, given the room for names and notes: up to wanted, so that the notes keep a
// usable width, but not below least. Only where there is not even that much the names give way, since a
// scroll bar below would cost a row.
constexpr int NameColumnWidth(int room, int least, int wanted, int usableNotes) {
    const int width = std::clamp(room - usableNotes, least, wanted);
    return std::min(width, std::max(room, least / 2));
}

// Loads a row. Missing files give empty texts, the duration 00:00 and the normal priority. Does not wait for
// files that are held. Completes a record that was cut off while it was written (RepairRecord).
DictationRow LoadDictationRow(const LPath& record);
// The same for one of many: a file that is missing from a complete listing of its folder is not opened. A
// listed size of 0 is not relied on, since it may be outdated.
DictationRow LoadDictationRow(const LPath& record, const FolderListing& listing);

// The new name of a dictation for a typed text: without blanks around it; nothing when it is blank or
// unchanged.
std::optional<std::string> ChangedName(std::string_view name, std::string_view typed);

// "mm:ss", rounded to whole seconds.
std::string FormatDuration(int32_t lengthMs);
