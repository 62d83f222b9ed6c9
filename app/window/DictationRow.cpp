#include "app/window/DictationRow.h"

#include "audio/wave/LWaveFile.h"
#include "base/LArith.h"
#include "base/LFile.h"
#include "base/LText.h"
#include "base/LTime.h"
#include "store/DictationRecord.h"
#include "store/NotesFile.h"

namespace {

// The files beside a record that are worth opening.
struct Worth {
    bool audio = true;
    bool notes = true;
};

DictationRow LoadFiles(const DictationFiles& files, const Worth& worth) {
    DictationRow row;
    row.files = files;
    DictationRecord values = DictationRecord::Read(row.files.record, 0);
    row.isUnreadable = values.result == LReadResult::Unreadable;
    row.isAbsent = values.result == LReadResult::Absent;
    if (values.result == LReadResult::Values) RepairRecord(row.files.record, values, LNowSeconds());
    const int32_t numberOfName = NumberOfFileName(row.files.record).value_or(0);
    row.number = values.number.value_or(numberOfName);
    const bool isRead = values.result == LReadResult::Values;
    row.name = LShownText(isRead ? values.name : LSplitPath(files.record.View()).name);
    row.date = values.date.value_or(0);
    row.priority = LShownText(values.priority);
    const int32_t lengthMs = worth.audio ? LWaveFile::LengthMs(files.audio) : 0;
    row.hasAudio = lengthMs > 0;
    row.duration = FormatDuration(lengthMs);
    if (worth.notes) row.notes = NotesFile::Preview(files.notes);
    return row;
}

}  // namespace

DictationRow LoadDictationRow(const LPath& record) {
    return LoadFiles(DictationFiles::OfPath(record), {});
}

DictationRow LoadDictationRow(const LPath& record, const FolderListing& listing) {
    const DictationFiles files = DictationFiles::OfPath(record);
    // The listed size is ignored: a recording that a power failure cut off can be listed with 0 bytes.
    const auto isThere = [&](const LPath& path) {
        return !listing.IsWhole() || listing.SizeOf(path.View()).has_value();
    };
    return LoadFiles(files, {isThere(files.audio), isThere(files.notes)});
}

RowSign SignOf(const DictationRow& row, bool isBeingRecorded) {
    using Holds = RowSign::Holds;
    return {isBeingRecorded ? Holds::RecordingNow
            : row.hasAudio  ? Holds::Recording
                            : Holds::Nothing,
            row.notes.find_first_not_of(' ') != std::string::npos, PriorityIndex(row.priority) == 0};
}

int PriorityIndex(std::string_view name) {
    for (size_t i = 0; i < std::size(kPriorities); ++i)
        if (LEqualNoCase(name, kPriorities[i])) return static_cast<int>(i);
    return -1;
}

std::optional<std::string> ChangedName(std::string_view name, std::string_view typed) {
    constexpr std::string_view kBlanks = " \t\r\n";
    const size_t first = typed.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) return std::nullopt;
    typed = typed.substr(first, typed.find_last_not_of(kBlanks) + 1 - first);
    if (typed == name) return std::nullopt;
    return std::string(typed);
}

std::string FormatDuration(int32_t lengthMs) {
    const int seconds = static_cast<int>(lengthMs * 0.001 + 0.5);
    return LFormat("%.2d:%.2d", seconds / 60, seconds % 60);
}
