#include "store/DictationRecord.h"

#include "base/LProfile.h"
#include "base/LText.h"
#include "base/LTrace.h"
#include "store/SettingsKeys.h"

// Records are small files in the settings format. They are read in one go, to tell a file that cannot be read
// from one with empty values, and written key by key with the platform's functions, each change complete by
// itself. A crash while a record is created can leave it without a number; RepairRecord completes it from the
// file name.

// Digits of the number in a file name.
constexpr size_t kNumberDigits = 8;

DictationRecord DictationRecord::Read(const LPath& record, uint32_t waitMs) {
    const LProfileSection section(record, RecordKeys::kSection, waitMs);
    const auto text = [&](const char* key) { return section.Read(key, {}); };
    const auto seconds = [&](const char* key) -> std::optional<int64_t> {
        const std::string value = text(key);
        if (value.empty()) return std::nullopt;
        return LParseInt64(value);
    };
    DictationRecord values;
    values.result = section.Result();
    values.name = text(RecordKeys::kName.key);
    if (const std::string number = text(RecordKeys::kNumber.key); !number.empty())
        values.number = LParseInt(number);
    values.date = seconds(RecordKeys::kDate);
    if (std::string priority = text(RecordKeys::kPriority.key); !priority.empty()) values.priority = priority;
    values.sendDate = seconds(RecordKeys::kSendDate);
    values.recipient = text(RecordKeys::kRecipient.key);
    values.sendStatus = text(RecordKeys::kSendStatus.key);
    return values;
}

std::string DefaultDictationName(int32_t number) {
    return LFormat("Dictation %.3ld", static_cast<long>(number % 1000));
}

std::string TapeName(int32_t number) {
    return LFormat("Tape %.ld", static_cast<long>(number));
}

std::optional<int32_t> NumberOfFileName(const LPath& path) {
    const std::string_view name = LSplitPath(path.View()).name;
    if (name.size() != kNumberDigits) return std::nullopt;
    for (char c : name) {
        if (!LIsDigit(c)) return std::nullopt;
    }
    return LParseInt(name);
}

// Only into an existing file: writing to a missing one would create a record of this one key.
static bool StoreKey(const LPath& record, const char* key, std::string_view value) {
    if (LFile::Exists(record) && LProfile::Write(record, RecordKeys::kSection, key, value)) return true;
    LTrace("StoreKey unable to write record", record.View());
    return false;
}

static bool StoreOrRemove(const LPath& record, const char* key, const std::string& value) {
    return value.empty() ? LProfile::Delete(record, RecordKeys::kSection, key) : StoreKey(record, key, value);
}

bool StoreName(const LPath& record, std::string_view name) {
    return StoreKey(record, RecordKeys::kName.key, name);
}

bool StorePriority(const LPath& record, std::string_view priority) {
    return StoreKey(record, RecordKeys::kPriority.key, priority);
}

bool StoreStatus(const LPath& record, std::string_view status) {
    return StoreKey(record, RecordKeys::kSendStatus.key, status);
}

bool WriteSendKeys(const LPath& record, const DictationRecord& values) {
    return StoreOrRemove(record, RecordKeys::kSendDate,
                         values.sendDate ? std::to_string(*values.sendDate) : std::string()) &&
           StoreOrRemove(record, RecordKeys::kRecipient.key, values.recipient) &&
           StoreOrRemove(record, RecordKeys::kSendStatus.key, values.sendStatus);
}

void RepairRecord(const LPath& record, DictationRecord& values, int64_t now) {
    const std::optional<int32_t> number = NumberOfFileName(record);
    if (values.number || !number || values.result == LReadResult::Unreadable) return;
    LTrace("RepairRecord record without a number", record.View());
    values.number = number;
    if (values.name.empty()) values.name = DefaultDictationName(*number);
    if (!values.date) values.date = now;
    Settings::Write(record, RecordKeys::kName, values.name);
    Settings::Write(record, RecordKeys::kNumber, *number);
    Settings::WriteNumber(record, RecordKeys::kSection, RecordKeys::kDate, *values.date);
}
