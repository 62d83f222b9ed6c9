#include "base/LProfileText.h"
#include "base/LTime.h"
#include "store/DictationRecord.h"
#include "store/SettingsKeys.h"
#include "store/UserList.h"
#include "tests/fuzz/Fuzz.h"

static void CheckValues(std::string_view text) {
    const int32_t seconds = Settings::ParseTime(text);
    Require(seconds >= 0 && seconds <= 86400);
    const int8_t level = LParseLevel(text).value_or(-15);
    Require(level >= kSilenceDb && LParseLevel(LFormatLevel(level)) == level);
    const LCalendar date = LToCalendar(static_cast<int64_t>(seconds) * 3000000 * (level + 1));
    Require(date.month >= 1 && date.month <= 12 && date.day >= 1 && date.day <= 31 && date.year >= 1601);
}

// What stands in a file, however wild, is read as values that can be written and read again, and a text that
// is written never changes another key.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const Scratch scratch;
    const LPath& file = scratch.path;
    const std::string text(reinterpret_cast<const char*>(data), size);
    CheckValues(text);
    LFile(file, LFile::Open::CreateNew).WriteAll({data, size});

    const DictationRecord record = DictationRecord::Read(file);
    Require(ReadUserList(file).size() <= size + 1);
    WriteSendKeys(file, record);
    Require(DictationRecord::Read(file).number == record.number);

    Settings::Write(file, RecordKeys::kSendStatus, "Sending");
    Settings::Write(file, RecordKeys::kName, text);
    Require(Settings::Read(file, RecordKeys::kSendStatus) == "Sending");
    Require(Settings::Read(file, RecordKeys::kName) == LProfileValue(LProfileSafe(text)));
    return 0;
}
