#include "app/window/DictationRow.h"

#include "audio/wave/LWaveFile.h"
#include "base/LArith.h"
#include "base/LFile.h"
#include "base/LText.h"
#include "base/LTime.h"
#include "store/DictationRecord.h"
#include "store/NotesFile.h"

DictationRow LoadDictationRow(const LPath& record) {
    DictationRow row;
    row.files = DictationFiles::OfPath(record);
    DictationRecord values = DictationRecord::Read(row.files.record, 0);
    row.isUnreadable = values.result == LReadResult::Unreadable;
    if (values.result == LReadResult::Values) RepairRecord(row.files.record, values, LNowSeconds());
    const int32_t numberOfName = NumberOfFileName(row.files.record).value_or(0);
    row.number = row.isUnreadable ? numberOfName : values.number.value_or(0);
    row.name = row.isUnreadable ? LSplitPath(record.View()).name : values.name;
    row.date = values.date.value_or(0);
    row.priority = values.priority;
    row.duration = FormatDuration(LWaveFile::LengthMs(row.files.audio));
    row.notes = NotesFile::Preview(row.files.notes);
    return row;
}

std::string FormatDuration(int32_t lengthMs) {
    const int seconds = static_cast<int>(lengthMs * 0.001 + 0.5);
    return LFormat("%.2d:%.2d", seconds / 60, seconds % 60);
}
